#include "TitlePicture.h"

#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <numbers>

#include "TitleSvg.h"
#include "scene/FontSource.h"
#include "scene/Renderer.h"

namespace gxbench {

namespace {

using gxtext::Effect;
using gxtext::EffectType;
using nlohmann::json;

struct Release {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

class Shaper {
public:
    Shaper(const std::string& file, int index, double size)
        : blob_(hb_blob_create_from_file(file.c_str())),
          face_(hb_face_create(blob_.get(), static_cast<unsigned>(index))),
          font_(hb_font_create(face_.get())) {
        const int scale = static_cast<int>(size * kUnit);
        hb_font_set_scale(font_.get(), scale, scale);
    }

    std::vector<TitleGlyph> shape(const std::string& text) const {
        const Owned<hb_buffer_t> buffer(hb_buffer_create());
        hb_buffer_add_utf8(buffer.get(), text.data(), static_cast<int>(text.size()), 0, -1);
        hb_buffer_guess_segment_properties(buffer.get());
        hb_shape(font_.get(), buffer.get(), nullptr, 0);
        unsigned count = 0;
        const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
        const hb_glyph_position_t* at = hb_buffer_get_glyph_positions(buffer.get(), nullptr);
        std::vector<TitleGlyph> glyphs;
        double pen = 0;
        for (unsigned i = 0; i < count; ++i) {
            glyphs.push_back(
                {infos[i].codepoint, (pen + at[i].x_offset) / kUnit, -at[i].y_offset / kUnit});
            pen += at[i].x_advance;
        }
        return glyphs;
    }

    // Where the ink begins, in whole pixels from the line's origin.
    double inkLeft(const std::vector<TitleGlyph>& glyphs) const {
        double left = std::numeric_limits<double>::max();
        for (const TitleGlyph& glyph : glyphs) {
            hb_glyph_extents_t extents{};
            hb_font_get_glyph_extents(font_.get(), glyph.id, &extents);
            if (extents.width != 0) left = std::min(left, glyph.x + extents.x_bearing / kUnit);
        }
        return std::floor(left);
    }

private:
    static constexpr double kUnit = 64;
    Owned<hb_blob_t> blob_;
    Owned<hb_face_t> face_;
    Owned<hb_font_t> font_;
};

TitlePaint paintOf(gxtext::Color color, double opacity) {
    const auto channel = [&](int shift) { return (color.argb >> shift & 0xFF) / 255.0; };
    return {channel(16), channel(8), channel(0), channel(24) * opacity};
}

// Weights of our blurs fall to a hundredth at the radius.
double deviationOf(double radius) {
    return radius / std::sqrt(2 * std::log(100.0));
}

// Towards `degrees`, counter-clockwise, y growing downwards.
Point direction(double degrees) {
    const double radians = degrees * std::numbers::pi / 180;
    return {std::cos(radians), -std::sin(radians)};
}

// The light's way from `angle`.
Point shiftOf(const Effect& effect) {
    const Point light = direction(effect.angle);
    return {-light.x * double{effect.distance}, -light.y * double{effect.distance}};
}

std::vector<TitleLayer::Stop> stopsOf(const Effect& effect) {
    std::vector<TitleLayer::Stop> stops;
    for (const gxtext::Stop& stop : effect.stops) {
        stops.push_back({stop.position, paintOf(stop.color, stop.opacity * effect.opacity)});
    }
    return stops;
}

TitleLayer layerOf(const Effect& effect, const gxtext::Box& ink) {
    using Kind = TitleLayer::Kind;
    const double width = ink.right - ink.left, height = ink.bottom - ink.top;
    const Point centre{ink.left + width / 2, ink.top + height / 2};
    TitleLayer layer{};
    layer.paint = paintOf(effect.color, effect.opacity);
    layer.deviation = deviationOf(effect.size);
    switch (effect.type) {
        case EffectType::kStroke:
            layer.kind = Kind::kStroke;
            layer.width = effect.size;
            break;
        case EffectType::kOuterShadow:
        case EffectType::kInnerShadow:
            layer.kind =
                effect.type == EffectType::kOuterShadow ? Kind::kShadow : Kind::kInnerShadow;
            layer.shift = shiftOf(effect);
            break;
        case EffectType::kOuterGlow:
        case EffectType::kInnerGlow:
            layer.kind = effect.type == EffectType::kOuterGlow ? Kind::kGlow : Kind::kInnerGlow;
            // What looks alike: our glow is full some way out, as the growth before its blur has
            // it.
            layer.width = 0.4 * double{effect.size};
            layer.deviation = deviationOf(0.6 * double{effect.size});
            break;
        case EffectType::kLinearGradient: {
            const Point way = direction(effect.angle);
            const double half = (std::abs(way.x) * width + std::abs(way.y) * height) / 2;
            layer.kind = Kind::kLinear;
            layer.from = {centre.x - half * way.x, centre.y - half * way.y};
            layer.to = {centre.x + half * way.x, centre.y + half * way.y};
            layer.stops = stopsOf(effect);
            break;
        }
        case EffectType::kRadialGradient:
            layer.kind = Kind::kRadial;
            layer.from = centre;
            layer.width = std::hypot(width, height) / 2;
            layer.stops = stopsOf(effect);
            break;
        default:
            layer.kind = Kind::kPattern;
            layer.opacity = effect.opacity;
    }
    return layer;
}

gxtext::Box inkOf(const gxtext::Arrangement& arrangement) {
    gxtext::Box ink = arrangement.lines.front().ink;
    for (const gxtext::Line& line : arrangement.lines) {
        ink.left = std::min(ink.left, line.ink.left);
        ink.top = std::min(ink.top, line.ink.top);
        ink.right = std::max(ink.right, line.ink.right);
        ink.bottom = std::max(ink.bottom, line.ink.bottom);
    }
    return ink;
}

// --- in the others' languages ---

constexpr const char* kKindNames[] = {"shadow", "glow",    "stroke",    "linear",
                                      "radial", "pattern", "innerGlow", "innerShadow"};

json jsonOf(const TitlePaint& paint) {
    return {paint.red, paint.green, paint.blue, paint.alpha};
}

json jsonOf(const TitleLayer& layer) {
    json stops = json::array();
    for (const TitleLayer::Stop& stop : layer.stops) {
        stops.push_back({stop.position, jsonOf(stop.paint)});
    }
    return {{"kind", kKindNames[static_cast<size_t>(layer.kind)]},
            {"shift", {layer.shift.x, layer.shift.y}},
            {"deviation", layer.deviation},
            {"width", layer.width},
            {"paint", jsonOf(layer.paint)},
            {"from", {layer.from.x, layer.from.y}},
            {"to", {layer.to.x, layer.to.y}},
            {"stops", std::move(stops)},
            {"pattern", layer.pattern},
            {"opacity", layer.opacity}};
}

}  // namespace

std::string TitlePicture::job() const {
    json texts = json::array();
    for (const TitleLine& line : lines) {
        json glyphs = json::array();
        for (const TitleGlyph& glyph : line.glyphs) glyphs.push_back({glyph.id, glyph.x, glyph.y});
        texts.push_back({{"text", line.text},
                         {"x", line.x},
                         {"baseline", line.baseline},
                         {"rightToLeft", line.rightToLeft},
                         {"glyphs", std::move(glyphs)}});
    }
    json stack = json::array();
    for (const TitleLayer& layer : layers) stack.push_back(jsonOf(layer));
    return json{{"width", width},
                {"height", height},
                {"font", fontFile},
                {"fontIndex", fontIndex},
                {"family", family},
                {"weight", weight},
                {"size", size},
                {"paint", jsonOf(paint)},
                {"lines", std::move(texts)},
                {"layers", std::move(stack)},
                {"svg", svgOf(*this)}}
        .dump();
}

TitlePicture titlePicture(const std::string& name, const std::string& fontFile, int fontIndex,
                          float scale) {
    TitlePicture picture;
    const std::string file = std::string(GXBENCH_PICTURES) + "/" + name + ".json";
    picture.style = gxtext::Style::fromFile(file).scaled(scale);
    picture.style.font = fontFile;
    picture.style.fontIndex = fontIndex;
    gxtext::Renderer renderer(gxtext::FontSource::files({fontFile}));
    const gxtext::FontFace face = renderer.arrange(picture.style).fonts.front().face;
    // By its name it is the source's, which is open; a file would be opened for each picture.
    picture.style.font = face.family;
    picture.style.fontIndex = 0;
    const gxtext::Arrangement arrangement = renderer.arrange(picture.style);
    picture.fontFile = fontFile;
    picture.fontIndex = fontIndex;
    picture.family = face.family;
    picture.weight = face.weight;
    picture.width = arrangement.width;
    picture.height = arrangement.height;
    picture.size = picture.style.size;
    picture.paint = paintOf(picture.style.color, picture.style.opacity);
    const Shaper shaper(fontFile, fontIndex, picture.size);
    for (const gxtext::Line& line : arrangement.lines) {
        std::vector<TitleGlyph> glyphs = shaper.shape(line.text);
        // Ours begins a line with its ink.
        const double x = line.x - shaper.inkLeft(glyphs);
        picture.lines.push_back({line.text, x, static_cast<double>(line.baseline), line.rightToLeft,
                                 std::move(glyphs)});
    }
    const gxtext::Box ink = inkOf(arrangement);
    for (const Effect& effect : picture.style.effects) {
        picture.layers.push_back(layerOf(effect, ink));
        if (!effect.pattern.empty()) {
            picture.layers.back().pattern =
                std::filesystem::weakly_canonical(picture.style.folder() / effect.pattern);
        }
    }
    std::stable_sort(picture.layers.begin(), picture.layers.end(),
                     [](const TitleLayer& a, const TitleLayer& b) { return a.kind < b.kind; });
    return picture;
}

}  // namespace gxbench
