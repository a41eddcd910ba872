package gxtest;

/** Adding effects and reading their margins. */
final class EffectTest {
    private static final int[] COLORS = {0xFFFF0000, 0xFF0000FF};
    private static final float[] ONES = {1f, 1f};
    private static final float[] ENDS = {0f, 1f};

    private EffectTest() {}

    static void idsCountUpAndClearStartsAgain() {
        Object text = Sdk.newText();
        Check.equal(0, gradient(text, COLORS, ONES, ENDS), "gradient");
        Check.equal(1, Sdk.number(text, "AddStrokeTextEffect", 3f, 0xFF000000, 1f, 0, 1), "stroke");
        Check.equal(2, Sdk.number(text, "AddOuterShadowTextEffect", 90f, 5f, 4f, 0xFF000000, 1f),
                "outer shadow");
        Check.equal(3, Sdk.number(text, "AddInnerShadowTextEffect", 90f, 5f, 4f, 0xFF000000, 1f),
                "inner shadow");
        Check.equal(4, Sdk.number(text, "AddOuterGlowTextEffect", 6f, 0xFFFFFF00, 1f), "outer glow");
        Check.equal(1, Sdk.number(text, "AddStrokeTextEffect", 9f, 0xFF000000, 1f, 0, 1),
                "a style that is there gets new settings");
        Check.isTrue(margins(text) > 0, "margins");
        Sdk.call(text, "ClearAllTextEffect");
        Check.equal(0, margins(text), "margins of nothing");
        Check.equal(0, Sdk.number(text, "AddStrokeTextEffect", 3f, 0xFF000000, 1f, 0, 1), "again");
    }

    static void eachSideHasItsMargin() {
        Object text = Sdk.newText();
        // Light from the left: the shadow falls to the right.
        Sdk.number(text, "AddOuterShadowTextEffect", 180f, 20f, 2f, 0xFF000000, 1f);
        int left = Sdk.number(text, "GetEffectLeftOffset");
        int right = Sdk.number(text, "GetEffectRightOffset");
        Check.isTrue(right > left + 10, "left " + left + ", right " + right);
        Check.equal(Sdk.number(text, "GetEffectTopOffset"),
                Sdk.number(text, "GetEffectBottomOffset"), "above and below");
    }

    static void gradientsNeedArraysOfOneLength() {
        Object text = Sdk.newText();
        float[] three = {0f, 0.5f, 1f};
        Check.equal(-1, gradient(text, null, ONES, ENDS), "no colours");
        Check.equal(-1, gradient(text, COLORS, null, ENDS), "no opacities");
        Check.equal(-1, gradient(text, COLORS, ONES, null), "no positions");
        Check.equal(-1, gradient(text, new int[3], ONES, ENDS), "three colours");
        Check.equal(-1, gradient(text, COLORS, three, ENDS), "three opacities");
        Check.equal(-1, gradient(text, COLORS, ONES, three), "three positions");
        Check.isTrue(Probe.log().stream().noneMatch(line -> line.startsWith("E/")), "silently");
        Check.equal(0, Sdk.number(text, "AddStrokeTextEffect", 1f, 0, 1f, 0, 0), "none was added");
        Check.equal(1, gradient(text, new int[0], new float[0], new float[0]), "no stops at all");
    }

    static void gradientsGiveArraysBackWhenOneCannotBeRead() {
        Object text = Sdk.newText();
        for (String[] failure : new String[][] {{"GetIntArrayElements", "1"},
                     {"GetFloatArrayElements", "1"}, {"GetFloatArrayElements", "2"}}) {
            Probe.failCall(failure[0], Integer.parseInt(failure[1]));
            Check.equal(-1, gradient(text, COLORS, ONES, ENDS), failure[0] + " " + failure[1]);
            Check.equal(0, Probe.outstanding(), "not given back after " + failure[0]);
        }
        Check.equal(0, gradient(text, COLORS, ONES, ENDS), "none was added");
    }

    private static int gradient(Object text, int[] colors, float[] opacities, float[] positions) {
        return Sdk.number(
                text, "AddLinearGradientTextEffect", 0f, 1f, colors, opacities, positions, 1f);
    }

    private static int margins(Object text) {
        return Sdk.number(text, "GetEffectLeftOffset") + Sdk.number(text, "GetEffectTopOffset")
                + Sdk.number(text, "GetEffectRightOffset")
                + Sdk.number(text, "GetEffectBottomOffset");
    }
}
