#include "effect/Silhouettes.h"

#include <algorithm>
#include <new>

#include "effect/filters/GxStroke.h"
#include "raster/BlendCut.h"
#include "raster/GxMath.h"
#include "raster/kernels/BlendRows.h"

namespace GxFontEffect {

CastKind castKindOf(int style) {
    switch (style) {
        case GXE_STYLE_OUTER_SHADOW:
        case GXE_STYLE_OUTER_GLOW:
            return CastKind::kOuter;
        case GXE_STYLE_INNER_SHADOW:
        case GXE_STYLE_INNER_GLOW:
            return CastKind::kInner;
        default:
            return CastKind::kNone;
    }
}

namespace {

// The stroke that an outline has of this effect; null for none.
const GxStrokeProperty* outlineOf(GxECoreBase& core) {
    const auto* stroke = dynamic_cast<const GxStrokeProperty*>(core.getProperty());
    const bool isOutline = stroke && (stroke->position == GxStrokeProperty::kOutside ||
                                      stroke->position == GxStrokeProperty::kCenter);
    return isOutline ? stroke : nullptr;
}

// The box with a margin, cut to another one.
GxRect grown(const GxRect& box, int64_t margin, const GxRect& within) {
    const auto place = [](int64_t edge, int32_t first, int32_t end) {
        return static_cast<int32_t>(std::clamp<int64_t>(edge, first, end));
    };
    return {place(box.left - margin, within.left, within.right),
            place(box.top - margin, within.top, within.bottom),
            place(box.right + margin, within.left, within.right),
            place(box.bottom + margin, within.top, within.bottom)};
}

}  // namespace

Silhouettes::Silhouettes(const GxECore::ParamPostProcessing& text, const GxRect& layerBox,
                         const std::vector<GxECoreBase*>& layers)
    : letters(text), canvas(layerBox), cores(layers) {}

Silhouettes::Shape::Shape(const GxRect& maskExtent, const GxRect& textBox)
    : extent(maskExtent), mask(maskExtent.width(), maskExtent.height(), 1), box(textBox) {}

// The larger of the two.
void Silhouettes::Shape::addPlane(int64_t x, int64_t y, const uint8_t* plane, int64_t width,
                                  int64_t height, int64_t stride) {
    kernels::max8Rows(
        cutToBitmap(x - extent.left, y - extent.top, &mask, plane, width, height, stride, 1));
}

// Takes in another text, within its box.
void Silhouettes::Shape::add(const GxECore::ParamPostProcessing& other) {
    const GxRect& from = *other.textRect;
    const int64_t stride = other.src->width;
    const uint8_t* corner =
        other.src->data + (from.top - other.srcTop) * stride + (from.left - other.srcLeft);
    addPlane(from.left, from.top, corner, from.width(), from.height(), stride);
}

// Takes in the band of a stroke around a text; the box grows by the stroke's margin. A stroke that
// draws nothing adds nothing.
bool Silhouettes::Shape::addStroke(GxECore::ParamPostProcessing& around, float size, int position) {
    const auto band = makeStrokeBand(around, size, position);
    if (!band) return !around.outOfMemory;
    addPlane(band->x, band->y, band->plane.data(), band->width(), band->height, band->width());
    const GxRect& text = *around.textRect;
    const int64_t margin = (band->width() - text.width()) / 2 - 1;  // but for the frame
    const GxRect reach = grown(text, margin, extent);
    box.left = std::min(box.left, reach.left);
    box.top = std::min(box.top, reach.top);
    box.right = std::max(box.right, reach.right);
    box.bottom = std::max(box.bottom, reach.bottom);
    return true;
}

// With room for the text of that box and a margin around it; null without memory.
std::unique_ptr<Silhouettes::Shape> Silhouettes::grownShape(const GxRect& box,
                                                            int64_t growth) const {
    std::unique_ptr<Shape> shape(new (std::nothrow) Shape(grown(box, growth, canvas), box));
    if (shape && !shape->mask.data) shape.reset();
    return shape;
}

GxECore::ParamPostProcessing Silhouettes::blockOf(Shape& shape) const {
    GxECore::ParamPostProcessing block = letters;
    block.src = &shape.mask;
    block.srcLeft = shape.extent.left;
    block.srcTop = shape.extent.top;
    block.textRect = &shape.box;
    return block;
}

bool Silhouettes::makeOutline() {
    if (outline) return true;
    int margin = 0;
    for (GxECoreBase* core : cores) {
        if (outlineOf(*core)) margin = std::max(margin, core->getReach());
    }
    auto shape = grownShape(*letters.textRect, margin);
    if (!shape) return false;
    shape->add(letters);
    for (GxECoreBase* core : cores) {
        const GxStrokeProperty* stroke = outlineOf(*core);
        GxECore::ParamPostProcessing block = letters;
        if (stroke && !shape->addStroke(block, stroke->size, stroke->position)) return false;
    }
    outline = std::move(shape);
    return true;
}

bool Silhouettes::makeSpread(const GxSilhouette& silhouette) {
    GxECore::ParamPostProcessing base = letters;
    if (silhouette.castFrom == GxSilhouette::kOutline) {
        if (!makeOutline()) return false;
        base = blockOf(*outline);
    }
    last = grownShape(*base.textRect, toInt(silhouette.spread + 0.5f));
    if (!last) return false;
    last->add(base);
    return last->addStroke(base, silhouette.spread, GxStrokeProperty::kOutside);
}

// The background, spread inwards, is the band of an inside stroke; what it leaves is the mask.
bool Silhouettes::makeChoked(float spread) {
    const GxBitmap& text = *letters.src;
    const int64_t right = letters.srcLeft + int64_t{text.width};
    const int64_t bottom = letters.srcTop + int64_t{text.height};
    last.reset(new (std::nothrow) Shape(
        GxRect(letters.srcLeft, letters.srcTop, saturateInt(right), saturateInt(bottom)),
        *letters.textRect));
    if (!last || !last->mask.data) return false;
    GxECore::ParamPostProcessing block = letters;
    const auto band = makeStrokeBand(block, spread, GxStrokeProperty::kInside);
    if (!band) return false;
    const GxRect& box = last->box;
    const int64_t width = box.width();
    for (int64_t y = box.top; y < box.bottom; ++y) {
        const uint8_t* background = band->plane.row(y - band->y) + (box.left - band->x);
        uint8_t* kept = last->mask.data + (y - letters.srcTop) * last->mask.width +
                        (box.left - letters.srcLeft);
        for (int64_t x = 0; x < width; ++x) {
            kept[x] = static_cast<uint8_t>(255 - background[x]);
        }
    }
    return true;
}

bool Silhouettes::choose(GxECoreBase& core, GxECore::ParamPostProcessing& param) {
    param.src = letters.src;
    param.textRect = letters.textRect;
    param.srcLeft = letters.srcLeft;
    param.srcTop = letters.srcTop;
    param.choked = nullptr;
    const GxSilhouette& silhouette = core.getSilhouette();
    const CastKind kind = castKindOf(core.getStyle());
    if (silhouette.isPlain() || kind == CastKind::kNone || !param.dst) return true;
    letters.dst = param.dst;  // without one there is no text to see

    const bool isBareOutline = kind == CastKind::kOuter && silhouette.spread == 0;
    const bool isLast = lastKind == kind && lastSilhouette.castFrom == silhouette.castFrom &&
                        lastSilhouette.spread == silhouette.spread;
    if (isBareOutline) {
        param.outOfMemory = !makeOutline();
    } else if (!isLast) {
        const bool made =
            kind == CastKind::kOuter ? makeSpread(silhouette) : makeChoked(silhouette.spread);
        lastKind = made ? kind : CastKind::kNone;
        lastSilhouette = silhouette;
        param.outOfMemory = !made;
    }
    if (param.outOfMemory) return false;
    Shape& shape = isBareOutline ? *outline : *last;
    // The inner shadow keeps to the letters by itself, the inner glow by the stack.
    if (core.getStyle() == GXE_STYLE_INNER_SHADOW) {
        param.choked = &shape.mask;
    } else {
        param.src = &shape.mask;
        param.textRect = &shape.box;
        param.srcLeft = shape.extent.left;
        param.srcTop = shape.extent.top;
    }
    return true;
}

}  // namespace GxFontEffect
