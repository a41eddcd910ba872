package gxgallery;

import android.content.Context;
import java.nio.file.Path;

/**
 * {@code Exported PROGRAM FOLDER STYLE_FILE CLASS}: runs what the page of the studio gave for the
 * style, the class's method {@code given(Context)}, and compares its picture with the program's of
 * the file. The exit code is 1 where the bytes differ.
 */
public final class Exported {
    private Exported() {}

    public static void main(String[] arguments) throws Exception {
        Class.forName(arguments[3]).getMethod("given", Context.class).invoke(null, new Context());
        String difference = Gallery.compare(
                arguments[0], Path.of(arguments[1]), Path.of(arguments[2]), GxTextView.given, 1);
        System.out.println(arguments[3] + ": " + (difference == null ? "the same bytes" : difference));
        System.exit(difference == null ? 0 : 1);
    }
}
