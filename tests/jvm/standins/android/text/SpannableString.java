package android.text;

import java.lang.reflect.Array;
import java.util.ArrayList;
import java.util.List;

/** Stand-in: a text with spans; a copy of one takes its spans over. */
public class SpannableString implements Spanned {
    private static final class Placed {
        final Object span;
        final int start;
        final int end;

        Placed(Object span, int start, int end) {
            this.span = span;
            this.start = start;
            this.end = end;
        }
    }

    private final String text;
    private final List<Placed> spans = new ArrayList<>();

    public SpannableString(CharSequence source) {
        text = source.toString();
        if (source instanceof SpannableString) {
            spans.addAll(((SpannableString) source).spans);
        }
    }

    public SpannableString with(Object span, int start, int end) {
        spans.add(new Placed(span, start, end));
        return this;
    }

    public void setSpan(Object span, int start, int end, int flags) { with(span, start, end); }

    public void removeSpan(Object span) { spans.removeIf(placed -> placed.span == span); }

    @SuppressWarnings("unchecked")
    public <T> T[] getSpans(int start, int end, Class<T> kind) {
        List<Object> found = new ArrayList<>();
        for (Placed placed : spans) {
            boolean touches = placed.start <= end && placed.end >= start;
            if (touches && (placed.span == null || kind.isInstance(placed.span))) {
                found.add(placed.span);
            }
        }
        return found.toArray((T[]) Array.newInstance(kind, 0));
    }

    @Override
    public int length() { return text.length(); }
    @Override
    public char charAt(int index) { return text.charAt(index); }
    @Override
    public CharSequence subSequence(int start, int end) { return text.subSequence(start, end); }
    @Override
    public String toString() { return text; }
}
