package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.zip.ZipEntry;
import java.util.zip.ZipFile;
import org.junit.Test;
import org.objectweb.asm.ClassReader;
import org.objectweb.asm.ClassVisitor;
import org.objectweb.asm.MethodVisitor;
import org.objectweb.asm.Opcodes;

/**
 * On which releases of Android the methods exist that the native library looks up by name and
 * signature, read from the class files of the frameworks. Writes docs/android-api-levels.md anew
 * into the report folder; the document in the repository must say the same for every release whose
 * framework is in Maven's local repository (java/fetch-frameworks puts them there).
 */
public class AndroidApiLevelsTest {
    /** API level, then the version of the framework's artefact. */
    private static final String[][] RELEASES = {
        {"24", "7.0.0_r1-robolectric-r1"},
        {"25", "7.1.0_r7-robolectric-r1"},
        {"26", "8.0.0_r4-robolectric-r1"},
        {"27", "8.1.0-robolectric-4611349"},
        {"28", "9-robolectric-4913185-2"},
        {"29", "10-robolectric-5803371"},
        {"30", "11-robolectric-6757853"},
        {"31", "12-robolectric-7732740"},
        {"32", "12.1-robolectric-8229987"},
        {"33", "13-robolectric-9030017"},
        {"34", "14-robolectric-10818077"},
        {"35", "15-robolectric-13954326"},
        {"36", "16-robolectric-13921718"},
    };

    /** Class, then its methods; the classes of Java itself are those of every release. */
    private static final List<List<String>> LOOKUPS = lookups();

    /** Reads the table that the library is compiled with. */
    private static List<List<String>> lookups() {
        Path table = Paths.get(
                System.getProperty("gxtext.root.dir"), "src", "bridge", "AndroidMethods.h");
        Pattern row = Pattern.compile(
                "MakeJavaClass\\(\"([^\"]+)\"|\\{\"([^\"]+)\", \"([^\"]+)\"\\}");
        List<List<String>> lookups = new ArrayList<>();
        try {
            Matcher matcher = row.matcher(Files.readString(table));
            while (matcher.find()) {
                if (matcher.group(1) != null) {
                    lookups.add(new ArrayList<>(List.of(matcher.group(1))));
                } else {
                    lookups.get(lookups.size() - 1).add(matcher.group(2) + matcher.group(3));
                }
            }
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        lookups.removeIf(lookup -> !lookup.get(0).startsWith("android/"));
        return lookups;
    }

    /** The classes of one framework. */
    private static final class Framework implements AutoCloseable {
        private final ZipFile jar;
        private final Map<String, Set<String>> methods = new HashMap<>();

        Framework(Path file) throws IOException {
            jar = new ZipFile(file.toFile());
        }

        boolean resolves(String type, String method) throws IOException {
            return methodsOf(type).contains(method);
        }

        /** Methods of the class and those it inherits, as a lookup from native code finds them. */
        private Set<String> methodsOf(String type) throws IOException {
            if (methods.containsKey(type)) {
                return methods.get(type);
            }
            Set<String> found = new HashSet<>();
            methods.put(type, found);
            ZipEntry entry = jar.getEntry(type + ".class");
            if (entry == null) {
                return found;
            }
            List<String> parents = new ArrayList<>();
            try (InputStream in = jar.getInputStream(entry)) {
                new ClassReader(in).accept(new ClassVisitor(Opcodes.ASM9) {
                    @Override
                    public void visit(int version, int access, String name, String signature,
                            String superName, String[] interfaces) {
                        parents.add(superName);
                        parents.addAll(List.of(interfaces));
                    }

                    @Override
                    public MethodVisitor visitMethod(int access, String name, String descriptor,
                            String signature, String[] exceptions) {
                        found.add(name + descriptor);
                        return null;
                    }
                }, ClassReader.SKIP_CODE | ClassReader.SKIP_DEBUG | ClassReader.SKIP_FRAMES);
            }
            for (String parent : parents) {
                if (parent != null) {
                    found.addAll(methodsOf(parent).stream()
                            .filter(m -> !m.startsWith("<")).collect(Collectors.toSet()));
                }
            }
            return found;
        }

        @Override
        public void close() throws IOException {
            jar.close();
        }
    }

    private static Path frameworkFile(String version) {
        return Paths.get(System.getProperty("gxtext.maven.repository"), "org", "robolectric",
                "android-all", version, "android-all-" + version + ".jar");
    }

    /** What a release lacks, per class; null when its framework is not here. */
    private static Map<String, List<String>> missingFrom(String version) throws IOException {
        Path file = frameworkFile(version);
        if (!Files.exists(file)) {
            return null;
        }
        Map<String, List<String>> missing = new LinkedHashMap<>();
        try (Framework framework = new Framework(file)) {
            for (List<String> lookup : LOOKUPS) {
                List<String> absent = new ArrayList<>();
                for (int i = 1; i < lookup.size(); i++) {
                    if (!framework.resolves(lookup.get(0), lookup.get(i))) {
                        absent.add(lookup.get(i));
                    }
                }
                missing.put(lookup.get(0), absent);
            }
        }
        return missing;
    }

    private static String simpleName(String type) {
        return type.substring(type.lastIndexOf('/') + 1).replace('$', '.');
    }

    /** "| 29 | 11 of 11 | ... |": how many methods of each class resolve. */
    private static String row(String level, Map<String, List<String>> missing) {
        StringBuilder row = new StringBuilder("| " + level + " |");
        for (List<String> lookup : LOOKUPS) {
            int count = lookup.size() - 1;
            int found = count - missing.get(lookup.get(0)).size();
            row.append(found == count ? " all " + count : " **" + found + " of " + count + "**")
                    .append(" |");
        }
        return row.toString();
    }

    private static List<String> absences(Map<String, List<String>> missing) {
        List<String> lines = new ArrayList<>();
        missing.forEach((type, methods) -> {
            for (String method : methods) {
                lines.add("`" + simpleName(type) + "." + method.replaceAll("\\(.*", "") + "`");
            }
        });
        return lines;
    }

    private static List<String> document(Map<String, Map<String, List<String>>> byLevel) {
        List<String> lines = new ArrayList<>(List.of(
                "# Methods of Android that the native library looks up",
                "",
                "Written by the test `AndroidApiLevelsTest` from the class files of each release's",
                "framework; not to be edited. A lookup is by name and exact signature. Whether an",
                "app may use a hidden class is another question: `FontConfig` is hidden.",
                "",
                "Missing methods of `Paint`, `TextView` and `Layout` make the call fail that reads",
                "them, those of `FontConfig` and its parts make `FontManager.setFontConfig` fail.",
                ""));
        StringBuilder head = new StringBuilder("| API |");
        StringBuilder rule = new StringBuilder("|---|");
        for (List<String> lookup : LOOKUPS) {
            head.append(" `").append(simpleName(lookup.get(0))).append("` |");
            rule.append("---|");
        }
        lines.add(head.toString());
        lines.add(rule.toString());
        byLevel.forEach((level, missing) -> lines.add(row(level, missing)));
        lines.add("");
        byLevel.forEach((level, missing) -> {
            if (!absences(missing).isEmpty()) {
                lines.add("- API " + level + " lacks " + String.join(", ", absences(missing)));
            }
        });
        return lines;
    }

    @Test
    public void everyLookupResolvesOnAndroid10And11AndTheDocumentSaysWhereElse() throws IOException {
        Map<String, Map<String, List<String>>> byLevel = new LinkedHashMap<>();
        for (String[] release : RELEASES) {
            Map<String, List<String>> missing = missingFrom(release[1]);
            if (missing != null) {
                byLevel.put(release[0], missing);
            }
        }
        assertTrue(LOOKUPS.toString(), LOOKUPS.size() >= 10);
        assertTrue("the framework that the SDK is compiled against", byLevel.containsKey("29"));
        assertEquals(List.of(), absences(byLevel.get("29")));
        if (byLevel.containsKey("30")) {
            assertEquals(List.of(), absences(byLevel.get("30")));
        }

        List<String> written = document(byLevel);
        File folder = new File(System.getProperty("gxtext.report.dir"));
        assertTrue(folder.isDirectory() || folder.mkdirs());
        Files.write(folder.toPath().resolve("android-api-levels.md"), written);

        Path published = Paths.get(System.getProperty("gxtext.root.dir"), "docs", "android-api-levels.md");
        List<String> known = Files.readAllLines(published);
        for (String line : written) {
            assertTrue(published + " lacks this line: " + line, known.contains(line));
        }
    }
}
