package gxtest;

import java.util.List;
import java.util.Objects;
import java.util.function.Supplier;

final class Check {
    private Check() {}

    static void equal(Object expected, Object actual, String what) {
        if (!Objects.equals(expected, actual)) {
            throw new AssertionError(what + "\n  expected: " + expected + "\n  actual:   " + actual);
        }
    }

    static void isTrue(boolean condition, String what) {
        equal(true, condition, what);
    }

    static void logged(List<String> log, String line) {
        if (!log.contains(line)) {
            throw new AssertionError("not logged: " + line + "\n  but: " + log);
        }
    }

    /** Runs {@code body} and checks that it throws this very exception. */
    static void passesOn(RuntimeException expected, Supplier<Object> body, String what) {
        try {
            body.get();
        } catch (RuntimeException thrown) {
            if (thrown == expected) {
                return;
            }
            throw new AssertionError(what, thrown);
        }
        throw new AssertionError(what + ": nothing thrown");
    }
}
