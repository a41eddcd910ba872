package com.norvale.android.sdk.gxe;

import android.graphics.fonts.Font;
import android.graphics.fonts.FontVariationAxis;
import android.graphics.fonts.SystemFonts;
import android.os.Build;
import java.io.File;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.TreeSet;

/**
 * The fonts of the system as families of the process: made once, in the order in which they stand
 * in for each other.
 */
final class SystemFamilies {
    /** One font. */
    private static final class Face {
        final File file;
        final int index;
        final int weight;
        final boolean italic;
        final String locales;
        final String variations;

        Face(File file, int index, int weight, boolean italic, String locales,
                String variations) {
            this.file = file;
            this.index = index;
            this.weight = weight;
            this.italic = italic;
            this.locales = locales;
            this.variations = variations;
        }

        /** Of the file: "NotoSansArabicUI" of "NotoSansArabicUI-Bold.ttf". */
        String family() {
            String name = file.getName();
            int end = name.indexOf('-');
            return name.substring(0, end > 0 ? end : Math.max(name.lastIndexOf('.'), 0));
        }
    }

    /** What a text without a font is set in, the first that there is. */
    private static final List<String> DEFAULTS =
            Arrays.asList("Roboto", "RobotoStatic", "NotoSans", "DroidSans");

    /** The families that apps ask for by another name than their files'. */
    private static final String[][] ALIASES = {
        {"sans-serif-condensed", "RobotoCondensed"}, {"serif", "NotoSerif"},
        {"serif", "DroidSerif"}, {"monospace", "DroidSansMono"}, {"monospace", "RobotoMono"},
        {"serif-monospace", "CutiveMono"}, {"casual", "ComingSoon"}, {"cursive", "DancingScript"},
        {"sans-serif-smallcaps", "CarroisGothicSC"}};

    private static final int VARIANT_DEFAULT = 0;
    private static final int VARIANT_COMPACT = 1;
    private static final int VARIANT_ELEGANT = 2;

    private static final Map<String, Integer> OWN = new HashMap<>();

    /** Null until they are made; by the name of their files. */
    private static Map<String, Integer> named;
    private static int[] inOrder;

    private SystemFamilies() {}

    /** The families in order of preference; none on a system without a font that can be read. */
    static synchronized int[] get() {
        if (inOrder == null) {
            make(Build.VERSION.SDK_INT >= 29 ? Api29.faces() : facesBelow(SYSTEM_FOLDER));
        }
        return inOrder;
    }

    /** The family of that name; throws IllegalArgumentException when there is none. */
    static synchronized int named(String name) {
        int[] families = get();
        if (families.length > 0 && isDefault(name)) {
            return families[0];
        }
        TreeSet<String> known = new TreeSet<>();
        known.add("sans-serif");
        for (Map.Entry<String, Integer> family : named.entrySet()) {
            if (key(family.getKey()).equals(key(name))) {
                return family.getValue();
            }
            known.add(family.getKey());
        }
        for (String[] alias : ALIASES) {
            Integer family = named.get(alias[1]);
            if (family != null) {
                if (key(alias[0]).equals(key(name))) {
                    return family;
                }
                known.add(alias[0]);
            }
        }
        throw new IllegalArgumentException("font: the system has no family \"" + name
                + "\"; it has " + String.join(", ", known) + ", and files are given by their path");
    }

    private static boolean isDefault(String name) {
        String key = key(name);
        return key.equals("sansserif") || key.equals("sansserifmedium")
                || key.equals("sansseriflight") || key.equals("sansserifthin")
                || key.equals("sansserifblack") || key.equals("default");
    }

    private static String key(String name) {
        return name.toLowerCase(Locale.ROOT).replaceAll("[^a-z0-9]", "");
    }

    /** The family of one font that is known by this name, or -1 when it is none. */
    static synchronized int familyOf(
            String name, int index, String variations, String locales) {
        String key = name + '\0' + index + '\0' + variations + '\0' + locales;
        Integer known = OWN.get(key);
        if (known == null) {
            known = TextExtension.addFamily(new String[] {name}, new int[] {index}, new int[1],
                    new boolean[1], new String[] {variations}, locales, VARIANT_DEFAULT);
            if (known >= 0) {
                OWN.put(key, known);
            }
        }
        return known;
    }

    private static final File SYSTEM_FOLDER = new File("/system/fonts");

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

    private static void make(List<Face> faces) {
        // By family and language, for a collection holds one design for several.
        Map<String, List<Face>> families = new LinkedHashMap<>();
        faces.sort(Comparator.comparing((Face face) -> face.file.getPath())
                .thenComparing(face -> face.index).thenComparing(face -> face.weight)
                .thenComparing(face -> face.italic));
        for (Face face : faces) {
            if (face.file.canRead()) {
                families.computeIfAbsent(face.family() + '\0' + face.locales,
                        key -> new ArrayList<>()).add(face);
            }
        }
        List<List<Face>> order = new ArrayList<>(families.values());
        order.sort(Comparator.comparing((List<Face> family) -> rank(family.get(0))));
        named = new LinkedHashMap<>();
        List<Integer> numbers = new ArrayList<>();
        for (List<Face> family : order) {
            int number = add(family, variant(family.get(0), families.values()));
            if (number >= 0) {
                numbers.add(number);
                named.putIfAbsent(family.get(0).family(), number);
            }
        }
        inOrder = new int[numbers.size()];
        for (int i = 0; i < inOrder.length; i++) {
            inOrder[i] = numbers.get(i);
        }
    }

    private static int rank(Face face) {
        String family = face.family();
        int place = DEFAULTS.indexOf(family);
        if (place >= 0) {
            return place;
        }
        String lower = family.toLowerCase(Locale.ROOT);
        boolean isSymbols = lower.contains("symbol");
        boolean isEmoji = lower.contains("emoji");
        boolean isSans = lower.startsWith("notosans") || lower.startsWith("droidsans");
        boolean isPlain = isSans && !lower.contains("mono");
        if (isEmoji) {
            return 70 + (lower.contains("legacy") || lower.contains("flag") ? 1 : 0);
        }
        if (isSymbols) {
            return 80;
        }
        // Families that apps choose by name come after those that stand in for what others lack.
        return (isPlain ? 20 : lower.startsWith("notoserif") || lower.startsWith("noto") ? 30 : 60)
                + (lower.contains("cjk") ? 20 : 0);
    }

    /** A script with a family for user interfaces has a taller one beside it. */
    private static int variant(Face face, Collection<List<Face>> families) {
        String name = face.family();
        if (name.endsWith("UI")) {
            return VARIANT_COMPACT;
        }
        for (List<Face> other : families) {
            if (other.get(0).family().equals(name + "UI")) {
                return VARIANT_ELEGANT;
            }
        }
        return VARIANT_DEFAULT;
    }

    private static int add(List<Face> family, int variant) {
        int count = family.size();
        String[] files = new String[count];
        int[] indices = new int[count];
        int[] weights = new int[count];
        boolean[] italics = new boolean[count];
        String[] variations = new String[count];
        for (int i = 0; i < count; i++) {
            Face face = family.get(i);
            files[i] = face.file.getPath();
            indices[i] = face.index;
            weights[i] = Math.max(face.weight, 1);
            italics[i] = face.italic;
            variations[i] = face.variations;
        }
        return TextExtension.addFamily(files, indices, weights, italics, variations,
                family.get(0).locales, variant);
    }

    /** Apart, so that older systems do not meet the class SystemFonts. */
    private static final class Api29 {
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
