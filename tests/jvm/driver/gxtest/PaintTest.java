package gxtest;

import android.graphics.Paint;
import android.os.LocaleList;

/** What is taken from an android.graphics.Paint. */
final class PaintTest {
    private PaintTest() {}

    private static String paintAfter(Paint paint) {
        Object text = Sdk.newText();
        Check.isTrue(Sdk.flag(text, "SetPaint", paint), "SetPaint");
        return Probe.paint(Sdk.handle(text));
    }

    private static String localesAfter(String tags) {
        Paint paint = new Paint();
        paint.textLocales = new LocaleList(tags);
        return paintAfter(paint).replaceAll(".*locales (\\d+).*", "$1");
    }

    static void nullsAreTheDefaults() {
        Check.equal("size 12, scale 1, skew 0, bold 0, spacing 0, variant 0, flags 501, features "
                        + "'', locales 0, align 0",
                paintAfter(new Paint()), "an untouched paint");
        Paint paint = new Paint();
        paint.textLocales = new LocaleList(null);
        Check.isTrue(paintAfter(paint).contains("locales 0"), "null tags");
    }

    static void everyValueIsTaken() {
        Paint paint = new Paint();
        paint.textScaleX = 1.5f;
        paint.textSkewX = -0.25f;
        paint.letterSpacing = 0.125f;
        paint.elegantTextHeight = true;
        paint.flags = 0x1 | 0x20 | 0x80;
        paint.fakeBoldText = true;
        paint.fontFeatureSettings = "'smcp' on";
        paint.textSize = 42f;
        paint.textAlign = Paint.Align.RIGHT;
        Check.equal("size 42, scale 1.5, skew -0.25, bold 1, spacing 0.125, variant 2, flags a1, "
                        + "features ''smcp' on', locales 0, align 2",
                paintAfter(paint), "all set");
        paint.flags = 0x1;
        Check.isTrue(paintAfter(paint).contains("bold 0"), "the flags come after isFakeBoldText");
    }

    static void alignsByName() {
        Paint paint = new Paint();
        for (Paint.Align align : Paint.Align.values()) {
            paint.textAlign = align;
            int expected = align == Paint.Align.LEFT ? 0 : align == Paint.Align.RIGHT ? 2 : 1;
            Check.isTrue(paintAfter(paint).endsWith("align " + expected), align.name());
        }
    }

    static void localeListsAreKnownByTheirTags() {
        String japanese = localesAfter("ja-JP");
        Check.isTrue(!japanese.equals("0"), "registered");
        Check.equal(japanese, localesAfter("ja-JP"), "the same list");
        Check.isTrue(!japanese.equals(localesAfter("ko-KR,ja-JP")), "another list");
    }

    static void hostileNumbersAreTaken() {
        Paint paint = new Paint();
        paint.textSize = Float.NaN;
        paint.textScaleX = Float.POSITIVE_INFINITY;
        paint.letterSpacing = Float.NEGATIVE_INFINITY;
        paint.flags = -1;
        paintAfter(paint);
    }
}
