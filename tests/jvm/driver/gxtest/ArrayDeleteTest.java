package gxtest;

import android.content.res.AssetManager;

/**
 * The natives that free the characters of a name with array delete: not for a runtime that checks
 * what it gets back.
 */
final class ArrayDeleteTest {
    private ArrayDeleteTest() {}

    static void insertedFontsAreThereByName() {
        Check.isTrue(insert("inserted", FontTest.fontBytes()), "a font");
        Probe.settle(1);
        Check.logged(Probe.log(), "D/Init_GxFontManager_JNI: GxFontManager_InsertFontData");
        Check.isTrue(Sdk.flag(Sdk.newText(), "SetFont", "inserted"), "by name");
        Check.isTrue(insert("inserted", new byte[5]), "a name that is there");
        Check.isTrue(!insert("inserted garbage", new byte[5]), "no font");
        Check.isTrue(!insert("", FontTest.fontBytes()), "no name");
        Probe.settle(3);
    }

    static void insertingNothingIsNamed() {
        expectLog("GxFontManager_InsertFontData() - fontName is NULL", null, new byte[1]);
        expectLog("GxFontManager_InsertFontData() - buffer is NULL", "name", null);
        Probe.failCall("GetStringUTFChars", 1);
        expectLog("GxFontManager_InsertFontData() - Fail to get fontFile string", "name",
                new byte[1]);
        Probe.failCall("GetByteArrayElements", 1);
        Check.isTrue(!insert("unread", FontTest.fontBytes()), "no bytes");
        Probe.settle(1);
    }

    static void missingAssetsFail() {
        Object text = Sdk.newText();
        AssetManager assets = new AssetManager();
        Check.isTrue(!Sdk.flag(text, "SetFont3", assets, "missing.ttf"), "missing");
        Check.logged(Probe.log(), "E/GxText_JNI: GxText_SetFont3() - _ASSET_NOT_FOUND_");
        Check.equal(1, assets.opened, "asked for");
        Check.equal(0, Sdk.error(), "no code is recorded");
        Probe.settle(1);
    }

    private static boolean insert(String name, byte[] data) {
        return (Boolean) Sdk.fonts("InsertFontData", name, data);
    }

    private static void expectLog(String line, String name, byte[] data) {
        Probe.takeLog();
        Check.isTrue(!insert(name, data), line);
        Check.logged(Probe.log(), "E/Init_GxFontManager_JNI: " + line);
    }
}
