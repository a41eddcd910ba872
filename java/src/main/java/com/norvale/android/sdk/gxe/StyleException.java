package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * A style that is none. The message has a line for each mistake: {@code $.effects[2].size: 140 is
 * out of range 0-100}.
 */
public final class StyleException extends IllegalArgumentException {
    private static final long serialVersionUID = 1L;

    private final transient List<StyleMistake> mistakes;

    StyleException(List<StyleMistake> mistakes, Throwable cause) {
        super(join(mistakes), cause);
        this.mistakes = Collections.unmodifiableList(new ArrayList<>(mistakes));
    }

    /** From what the natives answer: UTF-8, three strings to a mistake, each ended by a zero. */
    static StyleException of(byte[] answer) {
        String[] parts = new String(answer, StandardCharsets.UTF_8).split("\0", -1);
        List<StyleMistake> mistakes = new ArrayList<>();
        for (int i = 0; i + 2 < parts.length; i += 3) {
            mistakes.add(new StyleMistake(parts[i], parts[i + 1], parts[i + 2]));
        }
        if (mistakes.isEmpty()) {
            mistakes.add(new StyleMistake("$", "there is not enough memory", ""));
        }
        return new StyleException(mistakes, null);
    }

    private static String join(List<StyleMistake> mistakes) {
        List<String> lines = new ArrayList<>();
        for (StyleMistake mistake : mistakes) {
            lines.add(mistake.toString());
        }
        return String.join("\n", lines);
    }

    /**
     * The mistakes in the order of the file.
     *
     * @return at least one, at most 20; cannot be changed; none after deserialization
     */
    @NonNull
    public List<StyleMistake> getMistakes() {
        return mistakes == null ? Collections.emptyList() : mistakes;
    }
}
