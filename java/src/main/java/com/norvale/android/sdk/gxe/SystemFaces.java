package com.norvale.android.sdk.gxe;

import android.graphics.fonts.Font;
import android.graphics.fonts.FontVariationAxis;
import android.graphics.fonts.SystemFonts;
import android.os.Build;
import java.io.File;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/** The fonts that the system has: those of its list or, before API level 29, of its folder. */
final class SystemFaces {
    /** One font. */
    static final class Face {
        final File file;
        final int index;
        final int weight;
        final boolean italic;
        final String locales;
        final String variations;
        /** Of the family: "NotoSansArabicUI" of "NotoSansArabicUI-Bold.ttf". */
        final String name;

        Face(File file, int index, int weight, boolean italic, String locales,
                String variations) {
            this.file = file;
            this.index = index;
            this.weight = weight;
            this.italic = italic;
            this.locales = locales;
            this.variations = variations;
            name = nameOf(file);
        }

        private static String nameOf(File file) {
            String name = file.getName();
            int end = name.indexOf('-');
            return name.substring(0, end > 0 ? end : Math.max(name.lastIndexOf('.'), 0));
        }
    }

    private static final File SYSTEM_FOLDER = new File("/system/fonts");

    private SystemFaces() {}

    static List<Face> all() {
        return Build.VERSION.SDK_INT >= 29 ? Api29.faces() : facesBelow(SYSTEM_FOLDER);
    }

    /** Without a list of fonts their files' names say what they are. */
    static List<Face> facesBelow(File folder) {
        List<Face> faces = new ArrayList<>();
        File[] files = folder.listFiles();
        for (File file : files == null ? new File[0] : files) {
            String name = file.getName().toLowerCase(Locale.ROOT);
            if (name.endsWith(".ttf") || name.endsWith(".otf")) {
                faces.add(face(file, 0, ""));
            } else if (name.endsWith(".ttc")) {
                String[] languages = name.contains("cjk")
                        ? new String[] {"ja", "ko", "zh-Hans", "zh-Hant"}
                        : new String[] {""};
                for (int i = 0; i < languages.length; i++) {
                    faces.add(face(file, i, languages[i]));
                }
            }
        }
        return faces;
    }

    private static Face face(File file, int index, String locales) {
        String[][] weights = {{"thin", "100"}, {"light", "300"}, {"medium", "500"},
            {"semibold", "600"}, {"black", "900"}, {"bold", "700"}};
        String style = file.getName().replaceFirst("^[^-]*", "").toLowerCase(Locale.ROOT);
        int weight = 400;
        for (String[] known : weights) {
            if (style.contains(known[0])) {
                weight = Integer.parseInt(known[1]);
                break;
            }
        }
        return new Face(file, index, weight, style.contains("italic"), locales, "");
    }

    /** Apart, so that older systems do not meet the class SystemFonts. */
    static final class Api29 {
        private Api29() {}

        static List<Face> faces() {
            List<Face> faces = new ArrayList<>();
            for (Font font : SystemFonts.getAvailableFonts()) {
                File file = font.getFile();
                if (file == null) {
                    continue; // given as a buffer, by an app
                }
                StringBuilder variations = new StringBuilder();
                FontVariationAxis[] axes = font.getAxes();
                for (FontVariationAxis axis : axes == null ? new FontVariationAxis[0] : axes) {
                    variations.append(variations.length() == 0 ? "" : ", ").append('\'')
                            .append(axis.getTag()).append("' ").append(axis.getStyleValue());
                }
                faces.add(new Face(file, font.getTtcIndex(), font.getStyle().getWeight(),
                        font.getStyle().getSlant() != 0, font.getLocaleList().toLanguageTags(),
                        variations.toString()));
            }
            return faces;
        }
    }
}
