package gxtest;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.regex.MatchResult;
import java.util.regex.Pattern;

/** What the library looks up on Android's classes, from the table that it is compiled with. */
final class AndroidMethods {
    private AndroidMethods() {}

    /** The names of the methods, in the order of the lookups. */
    static String[] of(String type) {
        try {
            String table = Files.readString(Path.of(System.getProperty("gxtest.android.methods")));
            int begin = table.indexOf("MakeJavaClass(\"" + type + "\"");
            Check.isTrue(begin >= 0, type);
            return Pattern.compile("\\{\"([^\"]+)\", \"[^\"]+\"\\}")
                    .matcher(table.substring(begin, table.indexOf("});", begin)))
                    .results().map((MatchResult row) -> row.group(1)).toArray(String[]::new);
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }
}
