package com.norvale.android.sdk.gxe.util;

import android.os.Build;
import androidx.annotation.NonNull;

/**
 * The error codes of the native library. Each thread has a code of its own: that of the last
 * failure on it. A success leaves it as it is, so it explains a failure only right after one.
 */
public final class GxError {
    /** Nothing has failed on this thread. */
    public static final int NONE = 0;

    /** An operation of the operating system failed. */
    public static final int SYSTEM_FAILURE = 1;

    /** Too many traversals of one list. */
    public static final int TRAVERSAL_LIMIT = 2;

    /** An index is out of range. */
    public static final int OUT_OF_RANGE = 3;

    /** An object was to be constructed a second time. */
    public static final int ALREADY_CONSTRUCTED = 4;

    /** An argument is null, empty or unusable, or there is not enough memory. */
    public static final int INVALID_ARGUMENT = 7;

    /** An object has not been constructed. */
    public static final int NOT_CONSTRUCTED = 8;

    /** What was asked for does not exist. */
    public static final int NOT_FOUND = 9;

    /** A file could not be opened. */
    public static final int FILE_NOT_OPENED = 11;

    /** The Java object has no native text object, or no longer. */
    public static final int NOT_BOUND = 19;

    private GxError() {}

    /**
     * The code of the last failure on this thread.
     *
     * @return one of the constants of this class; {@link #NONE} when nothing has failed yet
     */
    public static int getLastError() {
        NativeLibrary.load();
        return Error_GetError();
    }

    /**
     * What a code means.
     *
     * @param code a code from {@link #getLastError()}
     * @return a phrase in English for messages
     */
    @NonNull
    public static String describe(int code) {
        switch (code) {
            case NONE:
                return "no error";
            case SYSTEM_FAILURE:
                return "an operation of the operating system failed";
            case TRAVERSAL_LIMIT:
                return "too many traversals of one list";
            case OUT_OF_RANGE:
                return "index out of range";
            case ALREADY_CONSTRUCTED:
                return "object already constructed";
            case INVALID_ARGUMENT:
                return "invalid argument or not enough memory";
            case NOT_CONSTRUCTED:
                return "object not constructed";
            case NOT_FOUND:
                return "item not found";
            case FILE_NOT_OPENED:
                return "file could not be opened";
            case NOT_BOUND:
                return "no native text object";
            default:
                return "unknown error";
        }
    }

    // The native library asks once, while it is loaded: engineering builds log more.
    private static boolean isBuildTypeEngMode() {
        return "eng".equals(Build.TYPE);
    }

    private static native int Error_GetError();
}
