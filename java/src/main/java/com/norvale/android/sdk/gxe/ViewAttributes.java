package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.content.res.Resources;
import android.content.res.TypedArray;
import android.os.Build;
import android.util.AttributeSet;
import android.util.TypedValue;
import java.nio.charset.StandardCharsets;
import java.util.function.Consumer;

/** What a layout file, a style of the resources or the theme sets of a view. */
final class ViewAttributes {
    private final Context context;
    private final AttributeSet attrs;
    private final int defStyleAttr;
    private final boolean inEditMode;

    /** Null when not set. */
    TextStyle style;
    /** Null when not set. */
    TypedValue size;
    /** Null when not set. */
    Integer color;
    /** {@code android:fontFamily} when it is a font file of the resources, as a style names it. */
    String font;

    ViewAttributes(Context context, AttributeSet attrs, int defStyleAttr, boolean inEditMode) {
        this.context = context;
        this.attrs = attrs;
        this.defStyleAttr = defStyleAttr;
        this.inEditMode = inEditMode;
        read("gxStyle", value -> {
            int file = value.getResourceId(0, 0);
            style = file == 0 ? null : readStyle(new String(
                    RawResource.read(context.getResources(), file), StandardCharsets.UTF_8));
        });
        read("gxSize", value -> {
            size = new TypedValue();
            value.getValue(0, size);
        });
        read("gxColor", value -> color = value.getColor(0, 0));
        read(android.R.attr.fontFamily, value -> font = fontFile(value.getResourceId(0, 0)));
    }

    private TextStyle readStyle(String json) {
        // The layout editor has no native library.
        return inEditMode ? StyleReader.readChecked(json) : TextStyle.fromJson(json);
    }

    /** By name: the number is the app's, whose class R the SDK does not know. */
    private void read(String name, Consumer<TypedArray> use) {
        int number = context.getResources().getIdentifier(name, "attr", context.getPackageName());
        if (number != 0) {
            read(number, use);
        }
    }

    private void read(int number, Consumer<TypedArray> use) {
        TypedArray value =
                context.obtainStyledAttributes(attrs, new int[] {number}, defStyleAttr, 0);
        try {
            if (value.hasValue(0)) {
                use.accept(value);
            }
        } finally {
            value.recycle();
        }
    }

    /** Null for what is no font, or a family of several. */
    private String fontFile(int number) {
        if (number == 0 || Build.VERSION.SDK_INT < 26) {
            return null; // the name of a family, or one that the platform passes over
        }
        TypedValue file = new TypedValue();
        context.getResources().getValue(number, file, true);
        String path = String.valueOf(file.string);
        return path.endsWith(".ttf") || path.endsWith(".otf") || path.endsWith(".ttc")
                ? "@font/" + context.getResources().getResourceEntryName(number) : null;
    }

    /** A size in the pixels of the resources' screen. */
    static float pixels(TypedValue size, Resources resources) {
        return size.resourceId == 0
                ? TypedValue.complexToDimension(size.data, resources.getDisplayMetrics())
                : resources.getDimension(size.resourceId);
    }
}
