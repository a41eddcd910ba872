package com.norvale.android.sdk.gxe.util;

import androidx.annotation.AnyThread;
import androidx.annotation.NonNull;

/**
 * Loads {@code libgxtext.so}. The SDK does so by itself when it is first needed; an app calls it
 * early to choose the moment, or gives the file when it does not lie where the system looks.
 *
 * <p>Threads: any; the first caller loads, the others wait.
 */
@AnyThread
public final class NativeLibrary {
    private static final String NAME = "gxtext";

    private static boolean loaded;

    private NativeLibrary() {}

    /**
     * Loads the library from the app's own libraries, once.
     *
     * @throws UnsatisfiedLinkError when there is none for this device
     */
    // The classes that have natives must not load the library while they are initialised: loading
    // initialises all three of them, and two threads that start with different ones would wait for
    // each other.
    public static synchronized void load() {
        if (loaded) {
            return;
        }
        System.loadLibrary(NAME);
        loaded = true;
    }

    /**
     * Loads the library from a file, once.
     *
     * @param path absolute path of the file
     * @throws UnsatisfiedLinkError when the file cannot be loaded
     */
    public static synchronized void load(@NonNull String path) {
        if (loaded) {
            return;
        }
        System.load(path);
        loaded = true;
    }
}
