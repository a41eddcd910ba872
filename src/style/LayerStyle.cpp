#include "style/LayerStyle.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "style/FieldTable.h"
#include "style/LayerPaint.h"
#include "style/LayerRecord.h"

namespace gxtext {

namespace {

template <typename T>
const Field<Effect>& rowOf(EffectType type, T Effect::*member) {
    const auto& rows = effectFields(type);
    return **std::find_if(rows.begin(), rows.end(), [member](const Field<Effect>* row) {
        const auto* target = std::get_if<T Effect::*>(&row->target);
        return target && *target == member;
    });
}

// Puts a value into an effect as its row allows: `name` is the field that it came from. Lengths and
// angles are drawn in whole pixels and degrees.
template <typename T>
void put(LayerRecord& record, std::string_view name, std::optional<double> value, Effect& effect,
         T Effect::*member) {
    if (!value) return;
    const Field<Effect>& row = rowOf(effect.type, member);
    double kept = std::clamp(*value, row.range.min, row.range.max);
    if (kept != *value) {
        record.approximate(name, "out of range " + row.range.text());
    } else if (row.unit != Unit::kNone && kept != std::floor(kept)) {
        kept = std::floor(kept + 0.5);
        record.approximate(name, "drawn as " + shortText(kept) + ", a whole number");
    }
    effect.*member = static_cast<T>(kept);
}

std::vector<Color> colorsOf(const std::vector<Stop>& stops) {
    std::vector<Color> colors;
    colors.reserve(stops.size());
    for (const Stop& stop : stops) colors.push_back(stop.color);
    return colors;
}

// What all effects have. What the editor's dialogue shows changes nothing.
Effect begun(LayerRecord& record, Effect effect) {
    const bool isPresent = record.flag("present", true);
    effect.enabled = record.flag("enabled", true) && isPresent;
    record.flag("showInDialog", true);
    return effect;
}

// A contour that is more than a straight line, and what smooths it.
void dropContour(LayerRecord& record, std::string_view smoothing) {
    const bool isSmoothed = record.flag(smoothing, false);
    std::optional<LayerRecord> contour = record.record("contour");
    if (!contour) return;
    contour->word("name");
    bool isStraight = true;
    for (LayerRecord& point : contour->records("curve")) {
        const std::optional<double> x = point.number("x");
        const std::optional<double> y = point.number("y");
        isStraight = isStraight && x == y;
        point.finish();
    }
    contour->finish();
    if (isStraight) return;
    record.drop("contour", "effects fade evenly, without a contour");
    if (isSmoothed) record.drop(smoothing, "it smooths the contour, which is dropped");
}

// A part of the size stands still, the rest is blurred. A glow without a blur would not show.
void putBlur(LayerRecord& record, Effect& effect) {
    const bool isGlow =
        effect.type == EffectType::kOuterGlow || effect.type == EffectType::kInnerGlow;
    const double size = record.length("size").value_or(effect.size);
    const double choke = record.percentage("choke").value_or(0) / 100;
    const double part = size * std::clamp(choke, 0.0, 1.0);
    double still = std::floor(part + 0.5);
    if (isGlow) still = std::min(still, std::max(std::ceil(size) - 1, 0.0));
    if (choke < 0 || choke > 1) {
        record.approximate("choke", "out of range 0-100");
    } else if (still != part) {
        record.approximate("choke", isGlow ? "whole pixels, and one at least to fade over"
                                           : "its part of the size is drawn as whole pixels");
    }
    put(record, "choke", still, effect, &Effect::spread);
    put(record, "size", size - still, effect, &Effect::size);
}

// The light of the document, where it is known.
struct GlobalLight {
    std::optional<double> angle;
    std::optional<double> altitude;
};

// The document's light where the effect follows it and it is known, else the effect's own.
class Light {
public:
    Light(LayerRecord& record, const GlobalLight& global)
        : record_(record), isGlobal_(record.flag("useGlobalLight", false)), global_(global) {}

    void putAngle(Effect& effect) {
        std::optional<double> angle = find("angle", global_.angle, effect.angle);
        if (angle) angle = std::fmod(*angle, 360);
        put(record_, "angle", angle, effect, &Effect::angle);
    }
    void putAltitude(Effect& relief) {
        put(record_, "altitude", find("altitude", global_.altitude, relief.altitude), relief,
            &Effect::altitude);
    }

private:
    std::optional<double> find(std::string_view name, std::optional<double> global, float assumed) {
        const std::optional<double> own = record_.number(name);
        if (isGlobal_ && global) return global;
        if (isGlobal_ && !own) {
            record_.approximate("useGlobalLight", "the global light is not in the file; its " +
                                                      std::string(name) + " is assumed to be " +
                                                      shortText(assumed));
        }
        return own;
    }

    LayerRecord& record_;
    bool isGlobal_;
    const GlobalLight& global_;
};

Effect readShadow(LayerRecord& record, EffectType type, const GlobalLight& light) {
    Effect shadow = begun(record, Effect(type));
    putBlur(record, shadow);
    Light(record, light).putAngle(shadow);
    put(record, "distance", record.length("distance"), shadow, &Effect::distance);
    put(record, "opacity", record.number("opacity"), shadow, &Effect::opacity);
    shadow.color = readColor(record, "color");
    readBlendMode(record, "blendMode", {shadow.color});
    dropContour(record, "antialiased");
    record.dropUnless("noise", 0, "shadows have no noise");
    if (!record.flag("layerConceals", true)) {
        record.drop("layerConceals", "letters always hide the shadow beneath them");
    }
    return shadow;
}

Effect readGlow(LayerRecord& record, EffectType type) {
    Effect glow = begun(record, Effect(type));
    putBlur(record, glow);
    put(record, "opacity", record.number("opacity"), glow, &Effect::opacity);
    if (record.has("color")) glow.color = readColor(record, "color");
    if (std::optional<LayerRecord> gradient = record.record("gradient")) {
        glow.stops = readRamp(*gradient);
        gradient->finish();
        record.approximate("gradient", "a glow fades by itself along its colours");
    }
    readBlendMode(record, "blendMode",
                  glow.stops.empty() ? std::vector{glow.color} : colorsOf(glow.stops));
    dropContour(record, "antialiased");
    record.dropUnless("noise", 0, "glows have no noise");
    record.dropUnless("jitter", 0, "the colours of a glow are not shuffled");
    record.dropUnless("range", 0.5, "it lays a contour, and glows have none");
    if (record.word("technique").value_or("softer") != "softer") {
        record.approximate("technique", "drawn as \"softer\"");
    }
    if (record.word("source").value_or("edge") != "edge") {
        record.drop("source", "a glow begins at the edges; one inside is switched off");
        if (type == EffectType::kInnerGlow) glow.enabled = false;
    }
    return glow;
}

Effect beginRelief(LayerRecord& record) {
    struct Kind {
        EffectType type = EffectType::kBevel;
        BevelKind bevel = BevelKind::kInside;
        EmbossKind emboss = EmbossKind::kEmboss;
        bool isOfStroke = false;
    };
    static constexpr std::array<std::pair<std::string_view, Kind>, 5> kKinds{
        {{"inner bevel", {}},
         {"outer bevel", {.bevel = BevelKind::kOutside}},
         {"emboss", {.type = EffectType::kEmboss}},
         {"pillow emboss", {.type = EffectType::kEmboss, .emboss = EmbossKind::kPillow}},
         {"stroke emboss", {.type = EffectType::kEmboss, .isOfStroke = true}}}};
    const Kind kind = record.choice("style", kKinds, Kind());
    if (kind.isOfStroke) {
        record.approximate("style", "it runs along the letters' edges, not along the stroke");
    }
    Effect relief(kind.type);
    relief.bevelKind = kind.bevel;
    relief.embossKind = kind.emboss;
    return begun(record, relief);
}

Effect readRelief(LayerRecord& record, const GlobalLight& light) {
    static constexpr std::array<std::pair<std::string_view, Technique>, 3> kTechniques{
        {{"smooth", Technique::kSmooth},
         {"chisel hard", Technique::kChiselHard},
         {"chisel soft", Technique::kChiselSoft}}};
    static constexpr std::array<std::pair<std::string_view, Direction>, 2> kDirections{
        {{"up", Direction::kUp}, {"down", Direction::kDown}}};
    Effect relief = beginRelief(record);
    put(record, "size", record.length("size"), relief, &Effect::size);
    put(record, "strength", record.number("strength"), relief, &Effect::depth);
    put(record, "soften", record.length("soften"), relief, &Effect::soften);
    relief.technique = record.choice("technique", kTechniques, Technique::kSmooth);
    relief.direction = record.choice("direction", kDirections, Direction::kUp);
    Light own(record, light);
    own.putAngle(relief);
    own.putAltitude(relief);
    if (record.has("highlightColor")) relief.highlightColor = readColor(record, "highlightColor");
    relief.shadowColor = readColor(record, "shadowColor");
    put(record, "highlightOpacity", record.number("highlightOpacity"), relief,
        &Effect::highlightOpacity);
    put(record, "shadowOpacity", record.number("shadowOpacity"), relief, &Effect::shadowOpacity);
    readBlendMode(record, "highlightBlendMode", {relief.highlightColor});
    readBlendMode(record, "shadowBlendMode", {relief.shadowColor});
    dropContour(record, "antialiasGloss");
    if (record.flag("useTexture", false)) record.drop("useTexture", "reliefs have no texture");
    if (record.flag("useShape", false)) record.drop("useShape", "slopes have no contour");
    return relief;
}

// A ramp of one colour.
Effect readSolidFill(LayerRecord& record) {
    Effect fill = begun(record, Effect(EffectType::kLinearGradient));
    Stop stop;
    stop.color = readColor(record, "color");
    fill.stops = {stop};
    put(record, "opacity", record.number("opacity"), fill, &Effect::opacity);
    readBlendMode(record, "blendMode", {stop.color});
    return fill;
}

std::optional<Effect> readGradientOverlay(LayerRecord& record) {
    std::optional<LayerRecord> gradient = record.record("gradient");
    std::optional<Effect> fill;
    if (gradient) {
        fill = readGradient(record, "type", *gradient);
        gradient->finish();
    }
    if (!fill) {
        record.dropAll("a gradient without colours");
        return std::nullopt;
    }
    fill = begun(record, *fill);
    put(record, "opacity", record.number("opacity"), *fill, &Effect::opacity);
    readBlendMode(record, "blendMode", colorsOf(fill->stops));
    return fill;
}

// In quotes.
std::string nameOfPattern(LayerRecord& record) {
    std::optional<LayerRecord> pattern = record.record("pattern");
    if (!pattern) return shown({std::string()});
    std::string name = shown({pattern->word("name").value_or("")});
    pattern->word("id");
    pattern->finish();
    return name;
}

enum class Paint { kColor, kGradient, kPattern };

// The colours that the fill shows.
std::vector<Color> putFill(LayerRecord& record, Effect& stroke) {
    static constexpr std::array<std::pair<std::string_view, Paint>, 3> kPaints{
        {{"color", Paint::kColor}, {"gradient", Paint::kGradient}, {"pattern", Paint::kPattern}}};
    const Paint paint = record.choice("fillType", kPaints, Paint::kColor);
    stroke.color = readColor(record, "color");
    const std::string pattern = nameOfPattern(record);
    if (paint == Paint::kPattern) {
        record.approximate("fillType", "the file has no pixels of the pattern " + pattern +
                                           "; the stroke has its colour");
    } else if (record.has("pattern")) {
        record.drop("pattern", "the stroke is not painted with it");
    }
    std::optional<LayerRecord> gradient = record.record("gradient");
    if (gradient && paint != Paint::kGradient)
        record.drop("gradient", "the stroke is not painted with it");
    if (paint != Paint::kGradient) return {stroke.color};
    std::optional<Effect> fill;
    if (gradient) {
        fill = readGradient(*gradient, "style", *gradient);
        gradient->finish();
    }
    if (!fill) {
        record.approximate("fillType", "its gradient has no colours; the stroke has its colour");
        return {stroke.color};
    }
    stroke.fill.effects = {*fill};
    return colorsOf(fill->stops);
}

Effect readStroke(LayerRecord& record) {
    static constexpr std::array<std::pair<std::string_view, StrokePosition>, 3> kPositions{
        {{"outside", StrokePosition::kOutside},
         {"center", StrokePosition::kCenter},
         {"inside", StrokePosition::kInside}}};
    Effect stroke = begun(record, Effect(EffectType::kStroke));
    put(record, "size", record.length("size"), stroke, &Effect::size);
    put(record, "opacity", record.number("opacity"), stroke, &Effect::opacity);
    stroke.position = record.choice("position", kPositions, StrokePosition::kOutside);
    readBlendMode(record, "blendMode", putFill(record, stroke));
    if (record.flag("overprint", false))
        record.drop("overprint", "pictures are not printed in inks");
    return stroke;
}

// All effects of a file.
class Importer {
public:
    Importer(const JsonValue::Object& root, ImportedStyle& result)
        : root_(root, "$", result.losses), result_(result) {
        light_.angle = root_.number("globalAngle");
        light_.altitude = root_.number("globalAltitude");
    }

    // From the lowest to the topmost.
    void run() {
        addAll("dropShadow", [this](LayerRecord& record) {
            return readShadow(record, EffectType::kOuterShadow, light_);
        });
        addAll("outerGlow",
               [](LayerRecord& record) { return readGlow(record, EffectType::kOuterGlow); });
        dropPatternOverlay();
        addAll("gradientOverlay", readGradientOverlay);
        addAll("solidFill", readSolidFill);
        if (root_.record("satin")) root_.drop("satin", "there is no such effect");
        addAll("innerGlow",
               [](LayerRecord& record) { return readGlow(record, EffectType::kInnerGlow); });
        addAll("innerShadow", [this](LayerRecord& record) {
            return readShadow(record, EffectType::kInnerShadow, light_);
        });
        addAll("stroke", readStroke);
        addAll("bevel", [this](LayerRecord& record) { return readRelief(record, light_); });
        finish();
    }

private:
    template <typename Read>
    void addAll(std::string_view name, Read read) {
        std::vector<Effect> effects;
        for (LayerRecord& record : root_.records(name)) {
            const std::optional<Effect> effect = read(record);
            if (!effect) continue;
            record.finish();
            if (result_.style.effects.size() + effects.size() < kMaxEffects) {
                effects.push_back(*effect);
            } else {
                record.dropAll("more than " + std::to_string(kMaxEffects) + " effects");
            }
        }
        result_.style.effects.insert(result_.style.effects.end(),
                                     std::make_move_iterator(effects.rbegin()),
                                     std::make_move_iterator(effects.rend()));
    }

    void dropPatternOverlay() {
        std::optional<LayerRecord> overlay = root_.record("patternOverlay");
        if (!overlay) return;
        root_.drop("patternOverlay",
                   "the file has no pixels of the pattern " + nameOfPattern(*overlay));
    }

    void finish() {
        if (root_.number("scale").value_or(1) != 1) {
            root_.approximate("scale", "lengths are taken as they stand");
        }
        if (root_.flag("disabled", false)) {
            for (Effect& effect : result_.style.effects) effect.enabled = false;
        }
        root_.finish();
        result_.style.order = EffectOrder::kListed;
    }

    LayerRecord root_;
    ImportedStyle& result_;
    GlobalLight light_;
};

}  // namespace

std::string_view lossName(LossKind kind) {
    return kind == LossKind::kDropped ? "dropped" : "approximated";
}

ImportedStyle importLayerStyle(std::string_view json, const std::string& source) {
    const JsonValue root = parseJson(json, source);
    const auto* fields = root.as<JsonValue::Object>();
    if (!fields) throw StyleError(source, {"$", shown(root) + " is not an object", "an object"});
    ImportedStyle result;
    Importer(*fields, result).run();
    return result;
}

}  // namespace gxtext
