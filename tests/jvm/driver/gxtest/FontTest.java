package gxtest;

import android.content.res.AssetManager;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;

/** Fonts from files, bytes and assets. */
final class FontTest {
    static final String FONT = System.getProperty("gxtest.font");

    private FontTest() {}

    static byte[] fontBytes() {
        try {
            return Files.readAllBytes(Path.of(FONT));
        } catch (IOException e) {
            throw new AssertionError(e);
        }
    }

    static void filesLoadWhateverTheirName() throws IOException {
        Object text = Sdk.newText();
        Check.isTrue(Sdk.flag(text, "SetFont", FONT), "a font");
        Check.isTrue(!Sdk.flag(text, "SetFont", "/no/such/font.ttf"), "no file");
        Check.isTrue(!Sdk.flag(text, "SetFont", ""), "no name");
        Path folder = Files.createTempDirectory("gxtext-jvm");
        Path garbage = Files.write(folder.resolve("garbage.ttf"), new byte[1000]);
        // Beyond U+FFFF: two surrogates in JNI's characters, four bytes in the file's name.
        Path emoji = Files.write(folder.resolve("\uD83D\uDE00 \u00E9.ttf"), fontBytes());
        try {
            Check.isTrue(!Sdk.flag(text, "SetFont", garbage.toString()), "no font");
            Check.isTrue(Sdk.flag(text, "SetFont", emoji.toString()), "an unusual name");
        } finally {
            Files.delete(garbage);
            Files.delete(emoji);
            Files.delete(folder);
        }
    }

    static void bytesLoadUnderTheirName() {
        Object text = Sdk.newText();
        Check.isTrue(!Sdk.flag(text, "SetFont2", "garbage", new byte[1000]), "no font");
        Check.isTrue(!Sdk.flag(text, "SetFont2", "empty", new byte[0]), "no bytes");
        Check.isTrue(Sdk.flag(text, "SetFont2", "bytes", fontBytes()), "a font");
        Check.isTrue(Sdk.flag(text, "SetFont2", "bytes", new byte[7]), "a name that is there");
        Check.isTrue(Sdk.flag(text, "SetFont", "bytes"), "by name");
    }

    static void assetsLoadOnce() {
        Object text = Sdk.newText();
        AssetManager assets = new AssetManager();
        assets.assets.put("fonts/\uD83D\uDE00.ttf", fontBytes());
        assets.assets.put("fonts/garbage.ttf", new byte[100]);
        assets.assets.put("fonts/empty.ttf", new byte[0]);
        Check.isTrue(Sdk.flag(text, "SetFont3", assets, "fonts/\uD83D\uDE00.ttf"), "a font");
        Check.equal(1, assets.opened, "read");
        Check.isTrue(Sdk.flag(text, "SetFont3", assets, "fonts/\uD83D\uDE00.ttf"), "again");
        Check.isTrue(Sdk.flag(Sdk.newText(), "SetFont3", new AssetManager(),
                             "fonts/\uD83D\uDE00.ttf"), "elsewhere");
        Check.equal(1, assets.opened, "read once");
        Check.isTrue(!Sdk.flag(text, "SetFont3", assets, "fonts/garbage.ttf"), "no font");
        Check.isTrue(!Sdk.flag(text, "SetFont3", assets, "fonts/empty.ttf"), "no bytes");
    }

    static void missingArgumentsAreNamed() {
        Object text = Sdk.newText();
        String noFont = "Fail to get fontFile string";
        String noFamily = "Fail to get familyName string";
        expectLog(text, "SetFont", noFont, (Object) null);
        expectLog(text, "SetFontFamilyName", noFamily, (Object) null);
        Object[][] unread = {{"SetFont", noFont, FONT}, {"SetFontFamilyName", noFamily, "a"},
                {"SetFont2", noFont, "a", new byte[1]}, {"SetFont3", noFont, new AssetManager(), "a"}};
        for (Object[] call : unread) {
            Probe.failCall("GetStringUTFChars", 1);
            expectLog(text, (String) call[0], (String) call[1],
                    Arrays.copyOfRange(call, 2, call.length));
        }
        expectLog(text, "SetFont2", "fontName is NULL", null, new byte[1]);
        expectLog(text, "SetFont2", "buffer is NULL", "name", null);
        expectLog(text, "SetFont3", "assetManager is NULL", null, "name");
        expectLog(text, "SetFont3", "fontName is NULL", new AssetManager(), null);
        Probe.failCall("GetByteArrayElements", 1);
        Check.isTrue(!Sdk.flag(text, "SetFont2", "unread", fontBytes()), "no bytes");
        Check.isTrue(Sdk.flag(text, "SetFontFamilyName", "serif"), "a family name");
        Check.equal(0, Sdk.error(), "no code is recorded");
    }

    private static void expectLog(Object text, String method, String line, Object... arguments) {
        Probe.takeLog();
        Check.isTrue(!Sdk.flag(text, method, arguments), method);
        Check.logged(Probe.log(), "E/GxText_JNI: GxText_" + method + "() - " + line);
    }
}
