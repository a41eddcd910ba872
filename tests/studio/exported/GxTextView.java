package gxgallery;

import android.content.Context;
import com.norvale.android.sdk.gxe.TextStyle;

/** Keeps the style that it is given, in the place of the view that would draw it. */
public final class GxTextView {
    /** The last one's. */
    public static TextStyle given;

    public GxTextView(Context context) {}

    public void setTextStyle(TextStyle style) {
        given = style;
    }
}
