package gxtest;

import java.lang.reflect.Method;
import java.util.Arrays;
import java.util.concurrent.atomic.AtomicInteger;

/** Java objects and the native objects behind them. */
final class BindingTest {
    private BindingTest() {}

    static void bindsAtTheFirstCall() {
        Object text = Sdk.newText();
        Check.equal(-1, Sdk.handle(text), "fresh");
        Sdk.number(text, "GetEffectLeftOffset");
        int handle = Sdk.handle(text);
        Check.isTrue(handle >= 1, "bound");
        Check.logged(Probe.log(), "D/GxText_JNI: GetBoundTextObject - hande = 0");
        Sdk.number(text, "GetEffectLeftOffset");
        Check.equal(handle, Sdk.handle(text), "the same object");
        Check.isTrue(!Probe.log().contains("D/GxText_JNI: GetBoundTextObject - hande = 0"),
                "bound once");
        Object other = Sdk.newText();
        Sdk.flag(other, "SetLine", 1);
        Check.equal(handle + 1, Sdk.handle(other), "handles count up");
    }

    static void finalizeReleasesAndLaterCallsFail() {
        Object text = Sdk.newText();
        Sdk.call(text, "finalize");
        Sdk.call(text, "ClearAllTextEffect");
        Check.equal(-1, Sdk.handle(text), "neither binds an object");
        Sdk.flag(text, "SetLine", 1);
        int handle = Sdk.handle(text);
        Sdk.call(text, "finalize");
        Check.logged(Probe.log(), "D/GxText_JNI: finalize : RH " + handle);
        Sdk.call(text, "finalize");
        Check.isTrue(Probe.log().stream().noneMatch(line -> line.contains("finalize")),
                "the second time does nothing");
        Check.equal(handle, Sdk.handle(text), "the handle stays");
        expectNotBound(text, "released");
    }

    static void unknownHandlesAndObjectsWithoutAHandleFail() {
        Object text = Sdk.newText();
        Sdk.setHandle(text, 1_000_000);
        expectNotBound(text, "unknown handle");
        Object strange = Sdk.newText();
        Probe.hide("mHandle");
        expectNotBound(strange, "no mHandle");
        Probe.reset();
        Check.equal(-1, Sdk.handle(strange), "nothing was made for it");
    }

    static void errorsAreOfTheirThread() throws InterruptedException {
        Object text = Sdk.newText();
        Sdk.setHandle(text, 1_000_000);
        Sdk.number(text, "GetEffectLeftOffset");
        Check.equal(19, Sdk.error(), "here");
        Check.logged(Probe.log(), "D/GxError_JNI: Error_GetError");
        Sdk.flag(Sdk.newText(), "SetLine", 1);
        Check.equal(19, Sdk.error(), "a success does not clear it");
        AtomicInteger before = new AtomicInteger(-1);
        AtomicInteger after = new AtomicInteger(-1);
        Thread other = new Thread(() -> {
            before.set(Sdk.error());
            Sdk.number(text, "GetEffectTopOffset");
            after.set(Sdk.error());
        });
        other.start();
        other.join();
        Check.equal(0, before.get(), "a thread that never failed");
        Check.equal(19, after.get(), "and then did");
    }

    // Every native gives its failure value, records 19 and says where.
    private static void expectNotBound(Object text, String what) {
        for (Method method : Sdk.textNatives()) {
            String name = Sdk.nameOf(method);
            if (name.equals("finalize")) {
                continue;
            }
            Probe.setError(0);
            Probe.takeLog();
            Object result = Sdk.call(text, name, defaults(method.getParameterTypes()));
            Check.equal(failureOf(method), result, what + ": " + name);
            Check.equal(19, Sdk.error(), what + ": error of " + name);
            Check.isTrue(Probe.log().stream().anyMatch(
                                 line -> line.matches("E/GxText_JNI: @ Native Error 19 : \\d+")),
                    what + ": log of " + name);
        }
    }

    private static Object[] defaults(Class<?>[] types) {
        return Arrays.stream(types).map(
                type -> type == int.class ? (Object) 0 : type == float.class ? 0f : null).toArray();
    }

    private static Object failureOf(Method method) {
        Class<?> type = method.getReturnType();
        if (type == boolean.class) {
            return false;
        }
        if (type == int.class) {
            return method.getName().contains("Add") ? -1 : 0;
        }
        return null;
    }
}
