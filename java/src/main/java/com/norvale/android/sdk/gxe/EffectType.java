package com.norvale.android.sdk.gxe;

import com.norvale.android.sdk.gxe.Property.Kind;
import java.util.Arrays;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.Map;

/** The effects of style files and their fields, in the order in which they are written. */
// What files, builders and scaling know of effects stands here; tests hold it against the schema.
enum EffectType {
    STROKE("stroke", 1,
            Property.length("size", 0, 100, 1000, 2),
            Property.color("color", 0xFF000000),
            Property.of("fill", Kind.FILL),
            Property.choice("position", StrokeEffect.Position.values(),
                    StrokeEffect.Position.OUTSIDE)),
    OUTER_SHADOW("outerShadow", 0.75,
            angle(120), Property.length("distance", 0, 100, 1000, 5),
            Property.length("size", 0, 100, 1000, 5), spread("spread"), castFrom(),
            Property.color("color", 0xFF000000)),
    INNER_SHADOW("innerShadow", 0.75,
            angle(120), Property.length("distance", 0, 100, 1000, 5),
            Property.length("size", 0, 100, 1000, 5), spread("choke"),
            Property.color("color", 0xFF000000)),
    OUTER_GLOW("outerGlow", 0.75,
            Property.length("size", 0, 100, 1000, 5), spread("spread"), castFrom(),
            Property.color("color", 0xFFFFFFFF), Property.of("stops", Kind.STOPS)),
    INNER_GLOW("innerGlow", 0.75,
            Property.length("size", 0, 100, 1000, 5), spread("choke"),
            Property.color("color", 0xFFFFFFFF), Property.of("stops", Kind.STOPS)),
    LINEAR_GRADIENT("linearGradient", 1,
            angle(90), Property.number("scale", 0, 2, 1), span(),
            Property.of("stops", Kind.STOPS)),
    RADIAL_GRADIENT("radialGradient", 1,
            Property.number("scale", 0, 2, 1), span(), Property.of("stops", Kind.STOPS)),
    PATTERN("pattern", 1,
            Property.of("pattern", Kind.STRING), Property.length("scale", 0, 10, 10, 1)),
    BEVEL("bevel", 1,
            relief(BevelEffect.Kind.values(), BevelEffect.Kind.INSIDE)),
    EMBOSS("emboss", 1,
            relief(EmbossEffect.Kind.values(), EmbossEffect.Kind.EMBOSS));

    final String styleName;
    /** By name. */
    final Map<String, Property> properties;

    EffectType(String styleName, double opacity, Property... properties) {
        this.styleName = styleName;
        Map<String, Property> byName = new LinkedHashMap<>();
        byName.put("enabled", Property.flag("enabled", true));
        for (Property property : properties) {
            byName.put(property.name, property);
        }
        byName.put("opacity", Property.number("opacity", 0, 1, opacity));
        this.properties = Collections.unmodifiableMap(byName);
    }

    private static Property angle(double initial) {
        return Property.number("angle", -360, 360, initial);
    }

    private static Property spread(String name) {
        return Property.length(name, 0, 100, 100, 0);
    }

    private static Property castFrom() {
        return Property.choice("castFrom", CastFrom.values(), CastFrom.LETTERS);
    }

    private static Property span() {
        return Property.choice("span", GradientEffect.Span.values(), GradientEffect.Span.TEXT);
    }

    private static Property[] relief(Property.Named[] kinds, Property.Named kind) {
        return new Property[] {
            Property.choice("kind", kinds, kind),
            Property.length("size", 0, 250, 250, 5),
            Property.number("depth", 0, 10, 1),
            Property.choice("technique", ReliefEffect.Technique.values(),
                    ReliefEffect.Technique.SMOOTH),
            Property.choice("direction", ReliefEffect.Direction.values(),
                    ReliefEffect.Direction.UP),
            Property.wholeLength("soften", 0, 16),
            angle(120),
            Property.number("altitude", 0, 89, 30),
            Property.color("highlightColor", 0xFFFFFFFF),
            Property.number("highlightOpacity", 0, 1, 0.75),
            Property.color("shadowColor", 0xFF000000),
            Property.number("shadowOpacity", 0, 1, 0.75)};
    }

    static EffectType of(String styleName) {
        return Arrays.stream(values()).filter(type -> type.styleName.equals(styleName))
                .findFirst().orElseThrow(() -> new IllegalArgumentException(styleName));
    }

    /** A builder with what a file gets that names the type and nothing else. */
    TextEffect.Builder<?> newBuilder() {
        switch (this) {
            case STROKE:
                return new StrokeEffect.Builder();
            case OUTER_SHADOW:
                return ShadowEffect.outer();
            case INNER_SHADOW:
                return ShadowEffect.inner();
            case OUTER_GLOW:
                return new OuterGlowEffect.Builder();
            case INNER_GLOW:
                return new InnerGlowEffect.Builder();
            case LINEAR_GRADIENT:
                return new LinearGradientEffect.Builder();
            case RADIAL_GRADIENT:
                return new RadialGradientEffect.Builder();
            case PATTERN:
                return new PatternEffect.Builder();
            case BEVEL:
                return new BevelEffect.Builder();
            default:
                return new EmbossEffect.Builder();
        }
    }

    /**
     * Where the effect lies in natural order, beneath all that has a higher number. The same in all
     * readers of style files.
     */
    int rank(TextEffect effect) {
        switch (this) {
            case OUTER_SHADOW:
                return 0;
            case OUTER_GLOW:
                return 1;
            case STROKE:
                return effect.get("position") == StrokeEffect.Position.OUTSIDE ? 2 : 8;
            case BEVEL:
                return effect.get("kind") == BevelEffect.Kind.OUTSIDE ? 3 : 7;
            case INNER_GLOW:
                return 5;
            case INNER_SHADOW:
                return 6;
            case EMBOSS:
                return 7;
            default:
                return 4; // colours over the text's own
        }
    }
}
