package gxtest;

import java.util.Arrays;
import java.util.List;

/** What the tests can do to the runtime and see of the library; see Probe.cpp. */
final class Probe {
    private Probe() {}

    /** Stands between the library and JNI on this thread from now on. */
    static native void install();

    /** Lookups of a class, method or field of this name fail, until {@link #reset}. */
    static native void hide(String name);

    /** The given call of this JNI function (1: the next) gives null and an OutOfMemoryError. */
    static native void failCall(String function, int which);

    /** Natives that call a method of this name get this thrown, until {@link #reset}. */
    static native void throwFrom(String method, RuntimeException error);

    static native void reset();

    /** Runs this where a native looks up or calls something of Java the given time (1: next). */
    static native void interrupt(int which, Runnable action);

    /** Whether that place was reached; nothing is interrupted from now on. */
    static native boolean endInterruption();

    /** Strings and arrays that natives have taken and not given back. */
    static native int outstanding();

    /** This many strings were freed in another way than by giving them back. */
    static native void settle(int strings);

    /** The class of each RegisterNatives. */
    static native String[] registrations();

    /** Loads the library once more, as for another class loader; the version that it answers. */
    static native int loadAgain();

    /** Bytes that malloc has given out. */
    static native long nativeBytes();

    /** Nanoseconds of this many renders without the way through Java. */
    static native long renderNanos(int handle, int count);

    /** "priority/tag: text" of what this thread logged since the last call. */
    static native String[] takeLog();

    /** The given C++ allocation of this thread (1: the next) fails. */
    static native void failAllocation(int which);

    /** Whether the allocation was reached; none fails from now on. */
    static native boolean endAllocationFailure();

    /** Verbose lines too. */
    static native void logEverything(boolean everything);

    /** Records a code for this thread. */
    static native void setError(int code);

    /** Writes to one variable many times, without a lock. */
    static native void race();

    static native boolean buildTypeSettled();

    /** Lets the next configuration be the first. */
    static native void forgetFontConfig();

    static native String paint(int handle);

    static native String view(int handle);

    /** Code points, null for no text. */
    static native int[] text(int handle);

    static native String[] lines(int handle);

    static List<String> log() {
        return Arrays.asList(takeLog());
    }
}
