package android.text;

/**
 * Stand-in with even lines: each {@code unitsPerLine} units of the text, 20 pixels high, the
 * baseline 15 below its top.
 */
public class Layout {
    public CharSequence text;
    public int lineCount;
    public int unitsPerLine;
    public float lineLeft;
    public float lineWidth = 100f;
    public int lineHeight = 20;

    public Layout(CharSequence text, int lineCount) {
        this.text = text;
        this.lineCount = lineCount;
        this.unitsPerLine = text == null || lineCount == 0 ? 0 : text.length() / lineCount;
    }

    private static AssertionError unwanted() {
        return new AssertionError("this method is not to be called");
    }

    public int getWidth() { throw unwanted(); }
    public int getHeight() { throw unwanted(); }
    public int getTopPadding() { throw unwanted(); }
    public int getBottomPadding() { throw unwanted(); }
    public int getLineCount() { return lineCount; }
    public int getParagraphDirection(int line) { throw unwanted(); }
    public int getParagraphLeft(int line) { throw unwanted(); }
    public int getParagraphRight(int line) { throw unwanted(); }
    public int getLineBaseline(int line) { return check(line) * lineHeight + 15; }
    public int getLineTop(int line) { throw unwanted(); }
    public int getLineBottom(int line) { return (check(line) + 1) * lineHeight; }
    public int getLineAscent(int line) { check(line); return -13; }
    public int getLineDescent(int line) { check(line); return 4; }
    public int getLineStart(int line) { return check(line) * unitsPerLine; }
    public int getLineEnd(int line) { throw unwanted(); }
    public int getLineVisibleEnd(int line) { return (check(line) + 1) * unitsPerLine; }
    public float getLineLeft(int line) { check(line); return lineLeft; }
    public float getLineRight(int line) { throw unwanted(); }
    public float getLineMax(int line) { throw unwanted(); }
    public float getLineWidth(int line) { check(line); return lineWidth; }
    public CharSequence getText() { return text; }

    private int check(int line) {
        if (line < 0 || line >= lineCount) {
            throw new IndexOutOfBoundsException("line " + line + " of " + lineCount);
        }
        return line;
    }
}
