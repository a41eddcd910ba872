package gxgallery;

import android.text.Layout;
import com.norvale.android.sdk.gxe.TextStyle;
import java.util.List;
import org.json.JSONArray;
import org.json.JSONException;
import org.json.JSONObject;

/** Lines where the program placed them. */
final class PlacedLines extends Layout {
    private final JSONArray lines;
    private final int left;
    private final int top;

    PlacedLines(CharSequence text, JSONObject measured, TextStyle style) throws JSONException {
        super(text, measured.getJSONArray("lines").length());
        lines = measured.getJSONArray("lines");
        JSONObject margins = measured.getJSONObject("margins");
        List<Integer> padding = style.getPadding();
        left = margins.getInt("left") + (padding == null ? 0 : padding.get(0));
        top = margins.getInt("top") + (padding == null ? 0 : padding.get(1));
    }

    private int of(int line, String name) { return lines.optJSONObject(line).optInt(name); }
    private int box(int line, String side) {
        return lines.optJSONObject(line).optJSONObject("box").optInt(side);
    }

    @Override
    public int getLineBaseline(int line) { return of(line, "baseline") - top; }
    @Override
    public int getLineBottom(int line) { return box(line, "bottom") - top; }
    @Override
    public int getLineAscent(int line) { return box(line, "top") - of(line, "baseline"); }
    @Override
    public int getLineDescent(int line) { return box(line, "bottom") - of(line, "baseline"); }
    @Override
    public int getLineStart(int line) { return of(line, "start"); }
    @Override
    public int getLineVisibleEnd(int line) { return of(line, "end"); }
    @Override
    public float getLineLeft(int line) { return of(line, "x") - left; }
    @Override
    public float getLineWidth(int line) { return box(line, "right") - box(line, "left"); }
}
