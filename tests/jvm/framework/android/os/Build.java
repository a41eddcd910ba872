package android.os;

/** Stand-in of an engineering build, whose log has every line. */
public class Build {
    public static final String TYPE = "eng";

    public static class VERSION {
        public static final int SDK_INT = 29;
    }
}
