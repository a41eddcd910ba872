package gxtest;

import gxtest.Natives.Native;
import java.util.List;
import java.util.Map;

/**
 * The application's objects use the very text object whose native is asking them. Every native is
 * interrupted once at each place where Java code may run, by every native and by the closing of the
 * object: it goes on with an object that is there, and a closed one goes when the native returns.
 */
final class ReentryTest {
    private static final int ROUNDS = 20;
    private static final String DELETED = "D/GxTextObject: Delete GxTextObject by InstanceManager";

    private ReentryTest() {}

    // With everything that a native may find there.
    private static Object text() {
        Object text = Widgets.text(Natives.view());
        Sdk.number(text, "AddStrokeTextEffect", 2f, -1, 1f, 0, 1);
        Sdk.flag(text, "SetLayout", Natives.layout("some text"));
        Widgets.render(text);
        Probe.takeLog();
        Probe.setError(0);
        return text;
    }

    static void theClosedObjectGoesWhenTheNativeReturns() {
        Map<String, Native> natives = Natives.all();
        Native close = text -> Sdk.call(text, "finalize");
        Native closeAndGoOn = text -> {
            close.call(text);
            natives.values().forEach(each -> each.call(text));
            return close.call(text);
        };
        int places = 0;
        for (int round = 0; round < ROUNDS; round++) {
            Native action = round % 2 == 0 ? close : closeAndGoOn;
            for (Map.Entry<String, Native> each : natives.entrySet()) {
                for (int which = 1; closeAt(which, each.getKey(), each.getValue(), action); which++) {
                    places++;
                }
            }
        }
        Check.isTrue(places > 100 * ROUNDS, "places where Java may run: " + places);
    }

    private static boolean closeAt(int which, String name, Native outer, Native close) {
        String what = name + ", closed at place " + which;
        Object text = text();
        boolean[] deletedInside = {false};
        Probe.interrupt(which, () -> {
            close.call(text);
            deletedInside[0] = deletions(Probe.log()) > 0;
            Probe.setError(0);
        });
        outer.call(text);
        boolean reached = Probe.endInterruption();
        if (!reached) {
            Sdk.call(text, "finalize");
        }
        if (deletedInside[0]) {
            Check.equal(19, Sdk.error(), what + ": deleted before the native had found it");
        } else {
            Check.equal(1, deletions(Probe.log()), what + ": deletions");
        }
        Check.equal(0, Sdk.number(text, "GetEffectLeftOffset"), what + ": afterwards");
        Check.equal(19, Sdk.error(), what + ": afterwards");
        return reached;
    }

    private static int deletions(List<String> log) {
        return (int) log.stream().filter(line -> line.startsWith(DELETED)).count();
    }

    static void anyNativeMayRunInsideAnyOther() {
        Map<String, Native> natives = Natives.all();
        for (Map.Entry<String, Native> outer : natives.entrySet()) {
            for (Map.Entry<String, Native> inner : natives.entrySet()) {
                String what = inner.getKey() + " inside " + outer.getKey() + " at place ";
                boolean reached = true;
                for (int which = 1; reached; which++) {
                    Object text = text();
                    Object expected = outer.getValue().call(text);
                    Probe.interrupt(which, () -> inner.getValue().call(text));
                    Object result = outer.getValue().call(text);
                    reached = Probe.endInterruption();
                    if (expected instanceof Boolean) {
                        Check.equal(expected, result, what + which);
                    }
                    Check.isTrue(Widgets.render(text) != null, what + which + ": then drawn");
                    Sdk.call(text, "finalize");
                    Check.equal(1, deletions(Probe.log()), what + which + ": deletions");
                }
            }
        }
    }
}
