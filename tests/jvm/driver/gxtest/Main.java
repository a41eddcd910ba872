package gxtest;

import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.Arrays;
import java.util.Comparator;

/**
 * Loads the library, unless the first class is about that, then runs the tests of the classes
 * named: their static void methods without arguments, in order of name and each with an empty log
 * and no error. Prints one line per test; the exit code is 1 when one failed.
 */
public final class Main {
    private Main() {}

    public static void main(String[] classNames) throws Exception {
        System.loadLibrary("gxtext_jvm_probe");
        Probe.install();
        if (!classNames[0].startsWith("Load")) {
            System.loadLibrary("gxtext");
        }
        int run = 0;
        int failed = 0;
        for (String className : classNames) {
            Method[] tests = Arrays.stream(Class.forName("gxtest." + className).getDeclaredMethods())
                    .filter(m -> Modifier.isStatic(m.getModifiers()) && !m.isSynthetic()
                            && !Modifier.isPrivate(m.getModifiers()) && m.getParameterCount() == 0
                            && m.getReturnType() == void.class)
                    .sorted(Comparator.comparing(Method::getName))
                    .toArray(Method[]::new);
            for (Method test : tests) {
                run++;
                if (!passes(className, test)) {
                    failed++;
                }
            }
        }
        System.out.println(run + " tests, " + failed + " failed");
        System.exit(run == 0 || failed > 0 ? 1 : 0);
    }

    private static boolean passes(String className, Method test) throws IllegalAccessException {
        test.setAccessible(true);
        Probe.takeLog();
        Probe.setError(0);
        boolean passed = false;
        try {
            test.invoke(null);
            Check.equal(0, Probe.outstanding(), "strings and arrays not given back");
            passed = true;
        } catch (InvocationTargetException e) {
            e.getCause().printStackTrace(System.out);
        } catch (AssertionError e) {
            e.printStackTrace(System.out);
        }
        Probe.reset();
        System.out.println((passed ? "ok      " : "FAILED  ") + className + "." + test.getName());
        return passed;
    }
}
