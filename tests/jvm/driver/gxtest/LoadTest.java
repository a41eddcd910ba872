package gxtest;

import java.util.Arrays;
import java.util.List;

/** Loading the library beside a Java side that has everything. */
final class LoadTest {
    private static final String[] TEXT_NATIVES = {
        "GxText_finalize()V",
        "GxText_AddInnerShadowTextEffect(FFFIF)I",
        "GxText_AddLinearGradientTextEffect(FF[I[F[FF)I",
        "GxText_AddOuterGlowTextEffect(FIF)I",
        "GxText_AddOuterShadowTextEffect(FFFIF)I",
        "GxText_AddStrokeTextEffect(FIFII)I",
        "GxText_ClearAllTextEffect()V",
        "GxText_RenderTextEffect()[I",
        "GxText_SetFont(Ljava/lang/String;)Z",
        "GxText_SetFont2(Ljava/lang/String;[B)Z",
        "GxText_SetFont3(Landroid/content/res/AssetManager;Ljava/lang/String;)Z",
        "GxText_SetPaint(Landroid/graphics/Paint;)Z",
        "GxText_SetLayout(Landroid/text/Layout;)Z",
        "GxText_SetLine(I)Z",
        "GxText_SetView(Landroid/widget/TextView;)Z",
        "GxText_GetDrawingBitmapSize()[I",
        "GxText_GetEffectLeftOffset()I",
        "GxText_GetEffectTopOffset()I",
        "GxText_GetEffectRightOffset()I",
        "GxText_GetEffectBottomOffset()I",
        "GxText_SetFontFamilyName(Ljava/lang/String;)Z",
    };

    private LoadTest() {}

    static void registersEachClassWithOneCallInOrder() {
        Check.isTrue(!Probe.buildTypeSettled(), "nobody has settled the build type before");
        System.loadLibrary("gxtext");
        Check.equal(
                List.of(Sdk.ERROR + ": Error_GetError()I",
                        Sdk.FONTS + ": GxFontManager_InsertFontData(Ljava/lang/String;[B)Z"
                                + " GxFontManager_SetFontConfig(Landroid/text/FontConfig;)Z",
                        Sdk.TEXT + ": " + String.join(" ", TEXT_NATIVES)),
                Arrays.asList(Probe.registrations()), "registrations");
        Check.equal(
                List.of("D/GxText_Common_JNI: GxText_JNI_OnLoad", "D/GxError_JNI: Init .. Done",
                        "D/Init_GxFontManager_JNI: Init_GxFontManager_JNI",
                        "D/GxText_JNI: JNI_OnLoad .. Done",
                        "D/GxText_Common_JNI: GxText_JNI_OnLoad .... done"),
                Probe.log(), "log");
        Check.isTrue(Probe.buildTypeSettled(), "Java was asked for the build type");
        Check.equal(1, Sdk.field(Sdk.ERROR, "asked"), "times that it was asked");
    }

    static void settlesTheBuildTypeOnce() {
        int before = Probe.registrations().length;
        Check.equal(0x00010002, Probe.loadAgain(), "version of JNI");
        Check.equal(before + 3, Probe.registrations().length, "registered again");
        Check.equal(1, Sdk.field(Sdk.ERROR, "asked"), "times that Java was asked");
    }
}
