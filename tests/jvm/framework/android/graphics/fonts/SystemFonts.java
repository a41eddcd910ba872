package android.graphics.fonts;

import java.util.Set;

/** Stand-in of a system without fonts. */
public class SystemFonts {
    public static Set<Font> getAvailableFonts() { return Set.of(); }
}
