package android.os;

/** Stand-in: a user's Android 9, whose fonts are those of a folder that is not here. */
public final class Build {
    public static final String TYPE = "user";

    private Build() {}

    public static final class VERSION {
        // Not a constant: compilers must not copy it.
        public static final int SDK_INT = Integer.parseInt("28");

        private VERSION() {}
    }
}
