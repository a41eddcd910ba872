package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;
import com.norvale.android.sdk.gxe.util.GxError;

/** The native library refused something. The message names it and what the library's code means. */
public class GxTextException extends RuntimeException {
    private static final long serialVersionUID = 1L;

    /** The thread's native error code at the time. */
    private final int errorCode;

    /**
     * Takes the native error code of this thread.
     *
     * @param message what was refused
     */
    public GxTextException(@NonNull String message) {
        this(message, GxError.getLastError());
    }

    private GxTextException(String message, int errorCode) {
        super(errorCode == GxError.NONE
                ? message
                : message + " (native error " + errorCode + ", " + GxError.describe(errorCode)
                        + ", from this or an earlier failure on this thread)");
        this.errorCode = errorCode;
    }

    /**
     * The last native error code of the thread that failed. Not every failure sets one, so it may
     * be that of an earlier failure.
     *
     * @return one of the constants of {@link GxError}
     */
    public int getErrorCode() {
        return errorCode;
    }
}
