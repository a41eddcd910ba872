package gxtest;

import java.util.Arrays;
import java.util.List;

/** A Java side that lacks the font manager class. */
final class LoadWithoutFontManager {
    private LoadWithoutFontManager() {}

    static void registersTheOthersAndThrowsAtTheEnd() {
        Probe.hide(Sdk.FONTS.replace('.', '/'));
        try {
            System.loadLibrary("gxtext");
            throw new AssertionError("nothing was thrown");
        } catch (NoClassDefFoundError expected) {
            Probe.reset();
        }
        List<String> log = Probe.log();
        Check.logged(log, "E/GxText_Common_JNI: GxFontManager OnLoad Fail!");
        Check.equal("D/GxText_Common_JNI: GxText_JNI_OnLoad .... done", log.get(log.size() - 1),
                "the load went through");
        Check.equal(2, Arrays.asList(Probe.registrations()).size(), "classes registered");

        // The runtime gives the library up because of the exception; what is registered has to go on
        // working.
        Object text = Sdk.newText();
        Check.equal(0, Sdk.number(text, "GetEffectLeftOffset"), "a native of GxText");
        Check.isTrue(Sdk.handle(text) >= 1, "bound");
        Check.equal(0, Sdk.error(), "the native of GxError");
    }
}
