package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertThrows;

import java.util.Arrays;
import java.util.HashSet;
import java.util.Set;
import org.junit.Test;

/** Styles as values and as files. */
public class TextStyleTest extends NativeTest {
    private static TextStyle.Builder style() {
        return new TextStyle.Builder();
    }

    private static TextStyle fullStyle() {
        return style()
                .setText("Grüße \"\\\n😀").setFont("fonts/Title-Bold.ttf").setSize(96.5f)
                .setBold(true).setItalic(false).setLetterSpacing(0.1f).setScaleX(1.25f)
                .setSkewX(-0.25f).setFontFeatures("'smcp' on").setLocale("sr-Cyrl,ja")
                .setColor(0x80123456).setBackground(0xFFABCDEF).setWidth(640)
                .setAlign(TextStyle.Align.CENTER).setOrder(TextStyle.Order.LISTED).setPadding(1, 2, 3, 4).setLineSpacing(1.5f)
                .addEffect(new StrokeEffect.Builder().setSize(3).setColor(0xFF00FF00)
                        .setOpacity(0.5f).setPosition(StrokeEffect.Position.INSIDE)
                        .build())
                .addEffect(ShadowEffect.outer().setAngle(-30).setDistance(7).setSize(4)
                        .setColor(0xFF102030).setOpacity(0.25f).build())
                .addEffect(ShadowEffect.inner().setAngle(45.5f).build())
                .addEffect(new OuterGlowEffect.Builder().setSize(20).setColor(0xFF0000FF).build())
                .addEffect(new LinearGradientEffect.Builder().setAngle(0).setScale(0.7f)
                        .addStop(0xFFFF0000, 0).addStop(new ColorStop(0x8000FF00, 0.3f, 0.333f))
                        .addStop(0xFF0000FF, 1).build())
                .build();
    }

    @Test
    public void filesReadBackAsTheSameStyle() {
        TextStyle style = fullStyle();
        TextStyle read = TextStyle.fromJson(style.toJson());
        assertEquals(style, read);
        assertEquals(style.hashCode(), read.hashCode());
        assertEquals(style.toJson(), read.toJson());
        assertEquals(style, style.toBuilder().build());
        assertEquals(TextStyle.EMPTY, TextStyle.fromJson("{}"));
    }

    @Test
    public void scaledMultipliesLengthsAndNothingElse() {
        TextStyle scaled = style().setSize(20).setLetterSpacing(0.1f).setPadding(1, 2, 3, 4)
                .setWidth(333).setBackground(new TextBackground(0xFF000000, 3, 5,
                        TextBackground.Span.BLOCK))
                .addEffect(ShadowEffect.outer().setAngle(45).setDistance(80).setSize(60).build())
                .addEffect(new BevelEffect.Builder().setSize(9).setSoften(3).setDepth(2).build())
                .build().scaled(1.5f);
        assertEquals(style().setSize(30).setLetterSpacing(0.1f).setPadding(2, 3, 5, 6)
                .setWidth(500).setBackground(new TextBackground(0xFF000000, 5, 8,
                        TextBackground.Span.BLOCK)).build().toBuilder().build(),
                scaled.toBuilder().clearEffects().build());
        ShadowEffect shadow = (ShadowEffect) scaled.getEffects().get(0);
        assertEquals(120f, shadow.getDistance(), 0); // more than a file allows
        assertEquals(90f, shadow.getSize(), 0);
        assertEquals(45f, shadow.getAngle(), 0);
        assertEquals(new BevelEffect.Builder().setSize(13.5f).setSoften(5).setDepth(2).build(),
                scaled.getEffects().get(1));
        assertNotEquals(scaled.getEffectKey(), scaled.scaled(2).getEffectKey());
    }

    @Test
    public void effectsAreStackedInTheOrderOfLayerStyles() {
        TextEffect gradient = new LinearGradientEffect.Builder().addStop(0xFFFF0000, 0).build();
        TextEffect stroke = new StrokeEffect.Builder().build();
        TextEffect rim = new StrokeEffect.Builder()
                .setPosition(StrokeEffect.Position.INSIDE).build();
        TextEffect shadow = ShadowEffect.outer().build();
        TextEffect hollow = ShadowEffect.inner().build();
        TextEffect glow = new OuterGlowEffect.Builder().build();
        TextStyle.Builder builder = style().addEffect(hollow).addEffect(stroke).addEffect(gradient)
                .addEffect(glow).addEffect(shadow);
        assertEquals(Arrays.asList(shadow, glow, stroke, gradient, hollow),
                builder.build().getEffects());
        assertEquals(Arrays.asList(hollow, stroke, gradient, glow, shadow),
                builder.setOrder(TextStyle.Order.LISTED).build().getEffects());
        assertEquals(Arrays.asList(shadow, gradient, hollow, rim), style().addEffect(rim)
                .addEffect(hollow).addEffect(gradient).addEffect(shadow).build().getEffects());
    }

    @Test
    public void buildersRefuseWhatIsOutOfRange() {
        StrokeEffect.Builder stroke = new StrokeEffect.Builder();
        LinearGradientEffect.Builder gradient = new LinearGradientEffect.Builder();
        Runnable[] calls = {
            () -> stroke.setSize(100.5f), () -> stroke.setSize(Float.NaN),
            () -> stroke.setOpacity(-0.1f), () -> style().setLocale("de_DE"),
            () -> style().setFontFeatures("kerning"),
            () -> ShadowEffect.outer().setAngle(361), () -> ShadowEffect.inner().setDistance(-1),
            () -> new OuterGlowEffect.Builder().setSize(Float.POSITIVE_INFINITY),
            () -> gradient.setScale(2.1f), () -> gradient.addStop(0, 1.5f),
            () -> new LinearGradientEffect.Builder().addStop(0, 0.5f).addStop(0, 0.4f),
            () -> style().setSize(0), () -> style().setLetterSpacing(Float.NaN),
            () -> style().setWidth(65536), () -> style().setPadding(0, 0, -1, 0),
            () -> new BevelEffect.Builder().setSize(251), () -> new EmbossEffect.Builder().setSoften(17),
            () -> new StrokeEffect.Builder().setFill(ShadowEffect.outer().build()),
            () -> ShadowEffect.inner().setCastFrom(CastFrom.OUTLINE),
            () -> style().setFontVariations("wide"), () -> style().setFillOpacity(1.1f),
            () -> style().build().scaled(0), () -> style().setSize(4096).build().scaled(1.1f),
        };
        for (int i = 0; i < calls.length; i++) {
            assertThrows("call " + i, IllegalArgumentException.class, calls[i]::run);
        }
        assertThrows(IllegalStateException.class, gradient::build);
        for (int i = 0; i < LinearGradientEffect.MAX_STOPS; i++) {
            gradient.addStop(i, 0.5f);
        }
        assertThrows(IllegalArgumentException.class, () -> gradient.addStop(0, 1));
    }

    @Test
    public void theEffectKeyTellsEffectsApartAndNothingElse() {
        TextEffect[] effects = {
            new StrokeEffect.Builder().build(),
            new StrokeEffect.Builder().setSize(3).build(),
            new StrokeEffect.Builder().setColor(0x00000000).build(),
            new StrokeEffect.Builder().setOpacity(0.99f).build(),
            new StrokeEffect.Builder().setPosition(StrokeEffect.Position.CENTER).build(),
            ShadowEffect.outer().build(),
            ShadowEffect.inner().build(),
            ShadowEffect.inner().setAngle(0).build(),
            ShadowEffect.inner().setDistance(0).build(),
            new OuterGlowEffect.Builder().build(),
            new LinearGradientEffect.Builder().addStop(0xFF000000, 0).build(),
            new LinearGradientEffect.Builder().addStop(new ColorStop(0xFF000000, 0.5f, 0)).build(),
            new LinearGradientEffect.Builder().addStop(0xFF000000, 1).build(),
        };
        Set<String> keys = new HashSet<>();
        Set<TextEffect> distinct = new HashSet<>(Arrays.asList(effects));
        for (TextEffect effect : effects) {
            keys.add(style().addEffect(effect).build().getEffectKey());
        }
        assertEquals(effects.length, keys.size());
        assertEquals(effects.length, distinct.size());
        assertEquals(fullStyle().getEffectKey(),
                fullStyle().toBuilder().setText("other").setSize(5).build().getEffectKey());
        assertNotEquals(fullStyle(), fullStyle().toBuilder().setSize(5).build());
        TextStyle.Builder listed = style().setOrder(TextStyle.Order.LISTED);
        assertNotEquals(listed.addEffect(effects[0]).addEffect(effects[5]).build(),
                listed.clearEffects().addEffect(effects[5]).addEffect(effects[0]).build());
    }

    @Test
    public void aBuiltStyleDoesNotFollowItsBuilder() {
        TextStyle.Builder builder = style().setSize(5).addEffect(ShadowEffect.outer().build());
        TextStyle built = builder.build();
        builder.setSize(6).setText("more").clearEffects();
        assertEquals(5f, built.getSize(), 0);
        assertNull(built.getText());
        assertEquals(1, built.getEffects().size());
        assertThrows(UnsupportedOperationException.class, () -> built.getEffects().clear());
    }
}
