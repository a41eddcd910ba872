package gxtest;

import java.util.List;

/** GxError does not tell the build type, GxText lacks natives: no exception, the rest works. */
final class LoadIncomplete {
    private LoadIncomplete() {}

    static void swallowsMissingMethods() {
        Probe.hide("isBuildTypeEngMode");
        Probe.hide("GxText_AddLinearGradientTextEffect");
        System.loadLibrary("gxtext");
        Probe.reset();
        List<String> log = Probe.log();
        Check.logged(log, "E/GxText_Common_JNI: GxError Onload Fail!");
        Check.logged(log, "E/GxText_Common_JNI: GxText OnLoad Fail!");
        Check.logged(log, "D/Init_GxFontManager_JNI: Init_GxFontManager_JNI");
        Check.isTrue(!Probe.buildTypeSettled(), "left to a later load");
        Check.equal(0, Sdk.error(), "the native of GxError");
        Check.equal(0,
                Sdk.number(Sdk.newText(), "AddInnerShadowTextEffect", 90f, 5f, 4f, -1, 1f),
                "a native of GxText");
    }
}
