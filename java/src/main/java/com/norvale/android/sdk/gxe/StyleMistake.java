package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;
import androidx.annotation.Nullable;

/** One mistake in a style. Immutable. */
public final class StyleMistake {
    private final String path;
    private final String reason;
    private final String allowed;

    StyleMistake(String path, String reason, String allowed) {
        this.path = path;
        this.reason = reason;
        this.allowed = allowed.isEmpty() ? null : allowed;
    }

    /**
     * The place of the value.
     *
     * @return a JSON path: {@code $.effects[2].size}; {@code $} for the whole
     */
    @NonNull
    public String getPath() {
        return path;
    }

    /**
     * What is wrong.
     *
     * @return a sentence: {@code 140 is out of range 0-100}
     */
    @NonNull
    public String getReason() {
        return reason;
    }

    /**
     * What would do instead.
     *
     * @return {@code 0-100}, or null where the reason says it all
     */
    @Nullable
    public String getAllowed() {
        return allowed;
    }

    @Override
    @NonNull
    public String toString() {
        return path + ": " + reason;
    }
}
