package gxtest;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import java.lang.reflect.Method;
import java.util.Arrays;
import java.util.Map;
import java.util.TreeMap;

/** The natives of a text, each ready to be called with arguments that give it much to do. */
final class Natives {
    interface Native {
        Object call(Object text);
    }

    private static int fonts;

    private Natives() {}

    /** By their names without the prefix; all but finalize. */
    static Map<String, Native> all() {
        Paint paint = new Paint();
        paint.fontFeatureSettings = "'liga' on, 'smcp' on, 'kern' off";
        paint.textLocales = new LocaleList("ja-JP,zh-Hant-TW,ko-KR");
        paint.textAlign = Paint.Align.CENTER;
        TextView view = view();
        view.gravity = 0x50;
        view.typeface = new Typeface(true, true);
        Layout layout = layout("a long enough text \uD83D\uDE00");
        Map<Class<?>, Object> given = Map.of(Paint.class, paint, TextView.class, view,
                Layout.class, layout, String.class, FontTest.FONT, byte[].class, new byte[9],
                int.class, 2, float.class, 1f, int[].class, new int[2], float[].class,
                new float[2]);
        Map<String, Native> natives = new TreeMap<>();
        for (Method method : Sdk.textNatives()) {
            Object[] arguments =
                    Arrays.stream(method.getParameterTypes()).map(given::get).toArray();
            String name = Sdk.nameOf(method);
            natives.put(name, text -> Sdk.call(text, name, arguments));
        }
        natives.put("SetFont3", text -> {
            AssetManager assets = new AssetManager();
            String name = "reentry " + fonts++;  // a name that is known is not opened
            assets.assets.put(name, new byte[9]);
            return Sdk.call(text, "SetFont3", assets, name);
        });
        natives.remove("finalize");
        return natives;
    }

    static TextView view() {
        TextView view = Widgets.view(30, 20);
        view.maxLines = 3;
        return view;
    }

    static Layout layout(String text) {
        return new Layout(new SpannableString(text).with(new BackgroundColorSpan(-1), 0, 3), 3);
    }
}
