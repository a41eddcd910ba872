package android.os;

/** Stand-in: a user's Android 10. */
public final class Build {
    public static final String TYPE = "user";

    private Build() {}

    public static final class VERSION {
        // Not a constant: compilers must not copy it.
        public static final int SDK_INT = Integer.parseInt("29");

        private VERSION() {}
    }
}
