// The measured titles by cairo, with Pango for the text: new layouts, a new surface, straight
// words.
#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "TitlePeers.h"

#ifdef GXBENCH_PANGO
#include <cairo.h>

#include "PangoFonts.h"
#endif

namespace gxbench {

#ifdef GXBENCH_PANGO

namespace {

using Kind = TitleLayer::Kind;

class CairoTitle {
public:
    explicit CairoTitle(const TitlePicture& picture)
        : picture_(picture), fonts_(picture.fontFile, picture.fontIndex, picture.size) {
        for (const TitleLayer& layer : picture_.layers) {
            if (layer.kind != Kind::kPattern) continue;
            tiles_[layer.pattern] = cairo_image_surface_create_from_png(layer.pattern.c_str());
        }
    }
    ~CairoTitle() {
        for (const auto& [file, tile] : tiles_) cairo_surface_destroy(tile);
    }
    CairoTitle(const CairoTitle&) = delete;
    CairoTitle& operator=(const CairoTitle&) = delete;

    bool ready() const { return fonts_.ready(); }

    Pixels draw() {
        Pixels pixels(static_cast<size_t>(picture_.width) * static_cast<size_t>(picture_.height));
        cairo_surface_t* surface = cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(pixels.data()), CAIRO_FORMAT_ARGB32, picture_.width,
            picture_.height, 4 * picture_.width);
        cairo_ = cairo_create(surface);
        cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
        for (const TitleLine& line : picture_.lines)
            layouts_.push_back(fonts_.newLayout(line.text));
        bool filled = false;
        const auto fill = [&] {
            setPaint(picture_.paint);
            if (!filled) show({});
            filled = true;
        };
        for (const TitleLayer& layer : picture_.layers) {
            if (isOverFill(layer.kind)) fill();
            add(layer);
        }
        fill();
        for (PangoLayout* layout : layouts_) g_object_unref(layout);
        layouts_.clear();
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface);
        straighten(pixels);
        return pixels;
    }

private:
    void setPaint(const TitlePaint& paint) {
        cairo_set_source_rgba(cairo_, paint.red, paint.green, paint.blue, paint.alpha);
    }

    template <typename Draw>
    void forEachLine(Point shift, const Draw& draw) {
        for (size_t i = 0; i < layouts_.size(); ++i) {
            const TitleLine& line = picture_.lines[i];
            cairo_move_to(cairo_, line.x + shift.x, line.baseline + shift.y);
            draw(cairo_, pango_layout_get_line_readonly(layouts_[i], 0));
        }
    }
    void show(Point shift) { forEachLine(shift, pango_cairo_show_layout_line); }
    void addPath(Point shift) { forEachLine(shift, pango_cairo_layout_line_path); }

    void outline(double width, Point shift = {}) {
        addPath(shift);
        cairo_set_line_width(cairo_, 2 * width);
        cairo_stroke(cairo_);
    }

    void addRamp(const TitleLayer& layer) {
        cairo_pattern_t* ramp =
            layer.kind == Kind::kLinear
                ? cairo_pattern_create_linear(layer.from.x, layer.from.y, layer.to.x, layer.to.y)
                : cairo_pattern_create_radial(layer.from.x, layer.from.y, 0, layer.from.x,
                                              layer.from.y, layer.width);
        for (const TitleLayer::Stop& stop : layer.stops) {
            cairo_pattern_add_color_stop_rgba(ramp, stop.position, stop.paint.red, stop.paint.green,
                                              stop.paint.blue, stop.paint.alpha);
        }
        cairo_set_source(cairo_, ramp);
        cairo_pattern_destroy(ramp);
        show({});
    }

    // There is no source with an opacity: the tile goes through the text as a clip.
    void addTiles(const TitleLayer& layer) {
        cairo_save(cairo_);
        addPath({});
        cairo_clip(cairo_);
        cairo_set_source_surface(cairo_, tiles_[layer.pattern], 0, 0);
        cairo_pattern_set_extend(cairo_get_source(cairo_), CAIRO_EXTEND_REPEAT);
        cairo_paint_with_alpha(cairo_, layer.opacity);
        cairo_restore(cairo_);
    }

    // A hard edge in place of a blur: as wide as the blur is half as strong.
    void addEdge(const TitleLayer& layer) {
        cairo_save(cairo_);
        if (layer.kind != Kind::kGlow) {
            addPath({});
            cairo_clip(cairo_);
        }
        TitlePaint half = layer.paint;
        half.alpha /= 2;
        setPaint(half);
        outline(layer.width + layer.deviation, layer.shift);
        cairo_restore(cairo_);
    }

    void add(const TitleLayer& layer) {
        switch (layer.kind) {
            case Kind::kShadow:
                setPaint(layer.paint);
                return show(layer.shift);
            case Kind::kStroke:
                setPaint(layer.paint);
                return outline(layer.width);
            case Kind::kGlow:
            case Kind::kInnerGlow:
            case Kind::kInnerShadow:
                return addEdge(layer);
            case Kind::kLinear:
            case Kind::kRadial:
                return addRamp(layer);
            case Kind::kPattern:
                return addTiles(layer);
        }
    }

    const TitlePicture picture_;
    PangoFonts fonts_;
    std::map<std::string, cairo_surface_t*> tiles_;
    cairo_t* cairo_ = nullptr;
    std::vector<PangoLayout*> layouts_;
};

}  // namespace

LinkedPainter cairoPainter(const TitlePicture& picture) {
    const auto title = std::make_shared<CairoTitle>(picture);
    const std::string name = std::string("cairo ") + cairo_version_string() + ", Pango";
    if (!title->ready()) return {name, "", {}};
    const bool hasBlur = std::any_of(picture.layers.begin(), picture.layers.end(),
                                     [](const TitleLayer& layer) { return isBlurred(layer.kind); });
    return {name,
            hasBlur ? "no blur: hard shadow, translucent outline for a glow" : "",
            [title] { return title->draw(); },
            {},
            hasBlur};
}

#else

LinkedPainter cairoPainter(const TitlePicture& /*picture*/) {
    return {"cairo", "", {}};
}

#endif

}  // namespace gxbench
