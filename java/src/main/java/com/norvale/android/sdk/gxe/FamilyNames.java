package com.norvale.android.sdk.gxe;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;

/** What apps call the families of the system, and which files and weight they then get. */
final class FamilyNames {
    /** One name. */
    static final class Name {
        final String name;
        /** What the files of the family are called; empty for the system's own. */
        final String files;
        final int weight;

        Name(String name, String files, int weight) {
            this.name = name;
            this.files = files;
            this.weight = weight;
        }
    }

    /** Files, then names, with the weight where it is not the regular one. */
    private static final String[][] TABLE = {
        {"", "sans-serif", "sans-serif-thin 100", "sans-serif-light 300", "sans-serif-medium 500",
            "sans-serif-black 900", "arial", "helvetica", "tahoma", "verdana"},
        {"RobotoCondensed", "sans-serif-condensed", "sans-serif-condensed-light 300",
            "sans-serif-condensed-medium 500"},
        {"NotoSerif", "serif", "serif-bold 700", "times", "times new roman", "palatino", "georgia",
            "baskerville", "goudy", "fantasy", "itc stone serif"},
        {"DroidSerif", "serif", "serif-bold 700", "times", "georgia"},
        {"DroidSansMono", "monospace", "sans-serif-monospace", "monaco"},
        {"RobotoMono", "monospace", "sans-serif-monospace", "monaco"},
        {"CutiveMono", "serif-monospace", "courier", "courier new"},
        {"ComingSoon", "casual"},
        {"DancingScript", "cursive"},
        {"CarroisGothicSC", "sans-serif-smallcaps"},
        {"SourceSansPro", "source-sans-pro", "source-sans-pro-semi-bold 600"},
    };

    /** All of them, those of the system's own family first. */
    static final List<Name> ALL = read();

    static final int REGULAR = 400;
    static final int BOLD = 700;

    private FamilyNames() {}

    private static List<Name> read() {
        List<Name> names = new ArrayList<>();
        for (String[] row : TABLE) {
            for (String entry : Arrays.asList(row).subList(1, row.length)) {
                String name = entry.replaceFirst(" [0-9]+$", "");
                names.add(new Name(name, row[0], name.equals(entry) ? REGULAR
                        : Integer.parseInt(entry.substring(name.length() + 1))));
            }
        }
        return names;
    }

    /** Whether it names the family that the system sets text in by itself. */
    static boolean isDefault(String name) {
        for (Name known : ALL) {
            if (known.files.isEmpty() && isSame(known.name, name)) {
                return true;
            }
        }
        return false;
    }

    /** Spaces, hyphens and case tell no families apart. */
    static boolean isSame(String one, String other) {
        return key(one).equals(key(other));
    }

    private static String key(String name) {
        return name.toLowerCase(Locale.ROOT).replaceAll("[^a-z0-9]", "");
    }

    /** The weight that is wanted of a family when the text is bold. */
    static int bolder(int weight) {
        return Math.min(weight + BOLD - REGULAR, 1000);
    }
}
