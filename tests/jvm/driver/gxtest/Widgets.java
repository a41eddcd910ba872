package gxtest;

import android.widget.TextView;

/** Text objects that are ready to be given a layout. */
final class Widgets {
    private Widgets() {}

    static TextView view(int width, int height) {
        TextView view = new TextView();
        view.width = width;
        view.height = height;
        return view;
    }

    /** A text in the tests' font for this view. */
    static Object text(TextView view) {
        Object text = Sdk.newText();
        Check.isTrue(Sdk.flag(text, "SetFont", FontTest.FONT), "SetFont");
        Check.isTrue(Sdk.flag(text, "SetView", view), "SetView");
        return text;
    }

    static int[] render(Object text) {
        return (int[]) Sdk.call(text, "RenderTextEffect");
    }
}
