package com.norvale.android.sdk.gxe;

import android.graphics.Typeface;
import android.os.Build;
import com.norvale.android.sdk.gxe.SystemFaces.Face;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/**
 * The fonts of the system as families of the process: listed once, in the order in which they stand
 * in for each other, and opened when a text wants them.
 */
final class SystemFamilies {
    /** What a text without a font is set in, the first that there is. */
    private static final List<String> DEFAULTS =
            Arrays.asList("Roboto", "RobotoStatic", "NotoSans", "DroidSans");

    private static final int VARIANT_DEFAULT = 0;
    private static final int VARIANT_COMPACT = 1;
    private static final int VARIANT_ELEGANT = 2;

    /** What stands in for characters that belong to no script of their own. */
    private static final List<String> SHARED = Arrays.asList("emoji", "symbol", "math", "music");

    /** Scripts by other names than those of the files. */
    private static final String[][] SCRIPTS = {{"HAN", "cjk"}, {"HIRAGANA", "cjk"},
        {"KATAKANA", "cjk"}, {"HANGUL", "cjk"}, {"BOPOMOFO", "cjk"}};

    private static final int[] NOTHING = new int[0];

    private static final Map<String, Integer> OWN = new HashMap<>();

    /** In order of preference; null until they are listed. */
    private static List<Family> families;

    private SystemFamilies() {}

    /** Faces of one design, opened when a text wants it. */
    private static final class Family {
        static final int NOT_OPENED = -2;

        final List<Face> faces;
        final String name;
        final int variant;
        final int rank;
        private int number = NOT_OPENED;

        Family(List<Face> faces, int variant) {
            this.faces = faces;
            this.variant = variant;
            name = faces.get(0).name;
            rank = rank(name);
        }

        /** Negative when a file is no font. */
        int number() {
            if (number == NOT_OPENED) {
                number = add(faces, variant);
            }
            return number;
        }
    }

    /** Whether there is a font that can be read. */
    static synchronized boolean isEmpty() {
        return list().isEmpty();
    }

    /** How many families there are. */
    static synchronized int count() {
        return list().size();
    }

    private static List<Family> list() {
        if (families == null) {
            families = inOrder(SystemFaces.all());
        }
        return families;
    }

    /**
     * The families that a text wants, in order of preference: the system's own, those that are named
     * after its scripts, and as many of the others as its characters need. The same for the same
     * text, whatever was drawn before.
     */
    static synchronized int[] of(String text, int own) {
        List<Family> all = list();
        if (all.isEmpty()) {
            return NOTHING;
        }
        Set<String> keys = scriptsOf(text);
        boolean[] taken = new boolean[all.size()];
        for (int i = 0; i < taken.length; i++) {
            taken[i] = i == 0 || isNamedAfter(all.get(i).name, keys);
        }
        int[] numbers = numbersOf(all, taken);
        for (int i = 0; i < taken.length && !covers(own, numbers, text); i++) {
            if (!taken[i]) {
                taken[i] = true;
                numbers = numbersOf(all, taken);
            }
        }
        return numbers;
    }

    private static int[] numbersOf(List<Family> all, boolean[] taken) {
        int[] numbers = new int[taken.length];
        int count = 0;
        for (int i = 0; i < taken.length; i++) {
            if (taken[i] && all.get(i).number() >= 0) {
                numbers[count++] = all.get(i).number();
            }
        }
        return Arrays.copyOf(numbers, count);
    }

    private static boolean covers(int own, int[] numbers, String text) {
        int[] families = Arrays.copyOf(numbers, numbers.length + 1);
        families[numbers.length] = own;
        return TextExtension.covers(families, text);
    }

    /** What names of files hold that draw the text's scripts. */
    private static Set<String> scriptsOf(String text) {
        Set<String> keys = new TreeSet<>();
        for (int i = 0; i < text.length(); i += Character.charCount(text.codePointAt(i))) {
            int c = text.codePointAt(i);
            String script = Character.UnicodeScript.of(c).name();
            String key = script.toLowerCase(Locale.ROOT).replace("_", "");
            for (String[] other : SCRIPTS) {
                key = other[0].equals(script) ? other[1] : key;
            }
            if (!key.equals("common") && !key.equals("inherited")) {
                keys.add(key);
            } else if (c > 0xFF && Character.getType(c) != Character.NON_SPACING_MARK) {
                keys.addAll(SHARED);
            }
        }
        return keys;
    }

    private static boolean isNamedAfter(String family, Set<String> keys) {
        String name = family.toLowerCase(Locale.ROOT);
        for (String key : keys) {
            if (name.contains(key)) {
                return true;
            }
        }
        return false;
    }

    /** A family of the system, and the weight that is wanted of it. */
    static final class Choice {
        /** Negative for the system's own. */
        final int family;
        final int weight;

        Choice(int family, int weight) {
            this.family = family;
            this.weight = weight;
        }
    }

    /** The family of that name; throws IllegalArgumentException when there is none. */
    static synchronized Choice named(String name) {
        for (FamilyNames.Name known : FamilyNames.ALL) {
            Family family = FamilyNames.isSame(known.name, name) ? find(known) : null;
            if (family != null) {
                return new Choice(family.number(), known.weight);
            }
        }
        for (Family family : list()) {
            if (FamilyNames.isSame(family.name, name)) {
                return new Choice(family.number(), FamilyNames.REGULAR);
            }
        }
        throw unknown(name);
    }

    /** Null when its files are not there. */
    private static Family find(FamilyNames.Name name) {
        for (Family family : list()) {
            if (name.files.isEmpty() || name.files.equals(family.name)) {
                return family; // the system's own is the first
            }
        }
        return null;
    }

    /** Says that there is no such family, and which there are. */
    static synchronized IllegalArgumentException unknown(String name) {
        Set<String> known = new TreeSet<>();
        for (FamilyNames.Name each : FamilyNames.ALL) {
            if (find(each) != null) {
                known.add(each.name);
            }
        }
        return new IllegalArgumentException("font: no family \"" + name
                + "\" is known among the system's fonts; known are " + String.join(", ", known)
                + ", and files are given by their path");
    }

    /** What a view's typeface is of the system's; its own family for one that is none of them. */
    static synchronized Choice of(Typeface typeface) {
        if (typeface == null || typeface.equals(Typeface.DEFAULT)) {
            return new Choice(-1, FamilyNames.REGULAR);
        }
        int style = typeface.getStyle();
        int weight = Build.VERSION.SDK_INT >= 28 ? Api28.weightOf(typeface) : -1;
        for (FamilyNames.Name known : FamilyNames.ALL) {
            // A name that the platform does not know gives its default one, which comes first.
            Family family = typeface.equals(Typeface.create(known.name, style))
                    ? find(known) : null;
            if (family != null) {
                return new Choice(family.number(), weight >= 0 ? weight
                        : typeface.isBold() ? FamilyNames.bolder(known.weight) : known.weight);
            }
        }
        return new Choice(-1, weight >= 0 ? weight
                : typeface.isBold() ? FamilyNames.BOLD : FamilyNames.REGULAR);
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

    private static List<Family> inOrder(List<Face> faces) {
        // By family and language, for a collection holds one design for several.
        Map<String, List<Face>> byName = new LinkedHashMap<>();
        faces.sort(Comparator.comparing((Face face) -> face.file.getPath())
                .thenComparing(face -> face.index));
        Set<String> names = new HashSet<>();
        for (Face face : faces) {
            names.add(face.name);
            if (face.file.canRead()) {
                byName.computeIfAbsent(face.name + '\0' + face.locales,
                        key -> new ArrayList<>()).add(face);
            }
        }
        List<Family> families = new ArrayList<>();
        for (List<Face> family : byName.values()) {
            // As the platform lists them: of two as near to a wanted weight the earlier is taken.
            family.sort(Comparator.comparing((Face face) -> face.weight == FamilyNames.BOLD)
                    .thenComparing(face -> face.weight).thenComparing(face -> face.italic));
            families.add(new Family(family, variant(family.get(0).name, names)));
        }
        families.sort(Comparator.comparingInt(family -> family.rank));
        return families;
    }

    private static int rank(String family) {
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
    private static int variant(String name, Set<String> names) {
        if (name.endsWith("UI")) {
            return VARIANT_COMPACT;
        }
        return names.contains(name + "UI") ? VARIANT_ELEGANT : VARIANT_DEFAULT;
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

    /** Apart, so that older systems do not meet the method. */
    private static final class Api28 {
        private Api28() {}

        static int weightOf(Typeface typeface) {
            return typeface.getWeight();
        }
    }
}
