package gxtest;

import java.util.Arrays;
import java.util.List;

/** Loading the library beside a Java side that has everything. */
final class LoadTest {
    private LoadTest() {}

    static void registersEachClassWithOneCallInOrder() {
        Check.isTrue(!Probe.buildTypeSettled(), "nobody has settled the build type before");
        System.loadLibrary("gxtext");
        Check.equal(List.of(Sdk.ERROR, Sdk.FONTS, Sdk.TEXT), Arrays.asList(Probe.registrations()),
                "registrations");
        Check.equal(
                List.of("D/GxText_Common_JNI: GxText_JNI_OnLoad", "D/GxError_JNI: Init .. Done",
                        "D/Init_GxFontManager_JNI: Init_GxFontManager_JNI",
                        "D/GxText_JNI: JNI_OnLoad .. Done",
                        "D/GxText_Common_JNI: GxText_JNI_OnLoad .... done"),
                Probe.log(), "log");
        Check.isTrue(Probe.buildTypeSettled(), "Java was asked for the build type");
    }

    static void settlesTheBuildTypeOnce() {
        Probe.hide("isBuildTypeEngMode"); // asking once more would fail
        int before = Probe.registrations().length;
        Check.equal(0x00010002, Probe.loadAgain(), "version of JNI");
        Check.equal(before + 3, Probe.registrations().length, "registered again");
        Check.isTrue(Probe.log().stream().noneMatch(line -> line.contains("Fail")), "not asked");
    }
}
