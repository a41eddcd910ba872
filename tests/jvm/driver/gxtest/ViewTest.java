package gxtest;

import android.graphics.Typeface;
import android.widget.TextView;

/** What is taken from an android.widget.TextView. */
final class ViewTest {
    private ViewTest() {}

    private static TextView view() {
        TextView view = Widgets.view(300, 200);
        view.paddingLeft = 1;
        view.paddingTop = 2;
        view.paddingRight = 3;
        view.paddingBottom = 4;
        view.gravity = 0x15;
        view.maxLines = 6;
        view.currentTextColor = 0x80123456;
        view.typeface = new Typeface(true, false);
        return view;
    }

    static void everyValueIsTaken() {
        Object text = Sdk.newText();
        TextView view = view();
        Check.isTrue(Sdk.flag(text, "SetLine", 9), "SetLine");
        Check.isTrue(Sdk.flag(text, "SetView", view), "SetView");
        Check.equal("300 x 200, padding 1 2 3 4, gravity 15, maxLines 6, limit 9, color 80123456, "
                        + "bold 1, italic 0",
                Probe.view(Sdk.handle(text)), "view");
        view.typeface = new Typeface(false, true);
        view.width = -1;
        view.gravity = 0x33;
        Check.isTrue(Sdk.flag(text, "SetView", view), "a size below 0");
        Check.equal("300 x 200, padding 1 2 3 4, gravity 33, maxLines 6, limit 9, color 80123456, "
                        + "bold 0, italic 1",
                Probe.view(Sdk.handle(text)), "all but the size");
        view.typeface = null;
        Check.isTrue(Sdk.flag(text, "SetView", view), "no typeface");
        Check.isTrue(Probe.view(Sdk.handle(text)).endsWith("bold 0, italic 1"), "style as before");
    }
}
