#include "effect/filters/Relief.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "effect/filters/ReliefLamp.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"
#include "raster/kernels/BlendPixel.h"
#include "raster/kernels/BoxBlur.h"
#include "raster/kernels/ContourDistance.h"
#include "raster/kernels/ReliefHeight.h"
#include "raster/kernels/ReliefLight.h"

namespace GxFontEffect {

// A relief in steps:
//   1. copy the mask into a plane with room for all that follows, and measure how far its contour
//      is along columns and rows;
//   2. raise the slope: heights by the distance to the nearest point of the contour;
//   3. round it: blur the heights; the pillow folds them at the contour;
//   4. light it;
//   5. soften the light;
//   6. split the light into highlight and shadow, and tint the layers through both.
// Each step takes a frame of the plane away, the last leaves what is painted.

namespace {

using kernels::ReliefPart;

// Rows that are split and painted at a time: their masks stay in the nearest cache.
constexpr int64_t kMaskRows = 16;

// Work figures of a relief over a text. Extents in pixels.
struct ReliefGeometry {
    ReliefGeometry(const TextMask& text, const ReliefShape& shape)
        : padding(shape.margin + shape.soften + shape.blur + 2),
          width(roundUp(text.width + 2 * padding, kernels::kReliefStep)),
          height(text.height + 2 * padding),
          paintedWidth(text.width + 2 * shape.margin),
          paintedHeight(text.height + 2 * shape.margin) {}

    int64_t padding;  // around the text on each side
    int64_t width;    // of the work planes
    int64_t height;
    int64_t paintedWidth;
    int64_t paintedHeight;
};

// All memory of one relief, in one allocation: 9 bytes per cell of the plane, and
// what the kernels work in.
struct ReliefPlanes {
    explicit ReliefPlanes(const ReliefGeometry& geometry)
        : memory(geometry.width, 9 * geometry.height + scratchRows(geometry), Contents::kAny) {
        if (!memory) return;
        const int64_t cells = memory.width * geometry.height + kernels::kReliefStep;
        alongRows = reinterpret_cast<int32_t*>(memory.data());
        alongColumns = reinterpret_cast<int16_t*>(alongRows + cells);
        heights = reinterpret_cast<uint16_t*>(alongColumns + cells);
        coverage = reinterpret_cast<uint8_t*>(heights + cells);
        scratch = coverage + cells;
        highlight = scratch;
        shadow = highlight + maskBytes(geometry);
    }
    explicit operator bool() const { return static_cast<bool>(memory); }

    const WorkPlane<uint8_t> memory;
    int32_t* alongRows = nullptr;
    int16_t* alongColumns = nullptr;
    uint16_t* heights = nullptr;  // then the light
    uint8_t* coverage = nullptr;
    uint8_t* scratch = nullptr;
    // Of some rows, in the scratch memory.
    uint8_t* highlight = nullptr;
    uint8_t* shadow = nullptr;

private:
    static int64_t maskBytes(const ReliefGeometry& geometry) {
        return kMaskRows * geometry.width + kernels::kReliefStep;
    }
    // With room behind each plane.
    static int64_t scratchRows(const ReliefGeometry& geometry) {
        const int64_t bytes =
            std::max({kernels::heightScratchBytes(geometry.width, geometry.height),
                      kernels::boxBlurScratchBytes(geometry.width, geometry.height),
                      kernels::lightScratchBytes(geometry.width), 2 * maskBytes(geometry)});
        return (bytes + 9 * kernels::kReliefStep) / geometry.width + 1;
    }
};

// A relief's tint: the colour, its alpha scaled by the opacity of the whole effect.
uint32_t tint(uint32_t color, float opacity) {
    const auto whole =
        static_cast<uint32_t>(toInt(clampFloat(opacity, 0.0f, 1.0f) * 255.0f + 0.5f));
    return kernels::premultiplied((color & 0x00FFFFFFu) | kernels::scale(color >> 24, whole) << 24);
}

// The relief shows over the text where it covers, under it where it does not hide.
ReliefPart partInFirstLayer(const ReliefShape& shape, bool hasOther) {
    if (shape.place == ReliefPlace::kInside) return ReliefPart::kCovered;
    return shape.isAcross() && !hasOther ? ReliefPart::kAll : ReliefPart::kNotFull;
}

struct Tints {
    uint32_t highlight;
    uint32_t shadow;
};

void paint(const TextMask& text, const ReliefShape& shape, const ReliefGeometry& geometry,
           const ReliefPlanes& planes, ReliefPart part, const Tints& tints, const GxBitmap* layer) {
    const int64_t width = geometry.width;
    const int64_t frame = geometry.padding - shape.margin;
    for (int64_t y = 0; y < geometry.paintedHeight; y += kMaskRows) {
        const int64_t rows = std::min(kMaskRows, geometry.paintedHeight - y);
        for (int64_t i = 0; i < rows; ++i) {
            kernels::reliefMasks(planes.heights + (y + i) * width,
                                 planes.coverage + (y + i + frame) * width + frame,
                                 geometry.paintedWidth, part, planes.highlight + i * width,
                                 planes.shadow + i * width);
        }
        const auto tintRows = [&](const uint8_t* mask, uint32_t color) {
            drawTinted(text.left - shape.margin, text.top - shape.margin + y, layer, mask,
                       geometry.paintedWidth, rows, width, color, GXE_BLEND_DST_OVER);
        };
        tintRows(planes.highlight, tints.highlight);
        tintRows(planes.shadow, tints.shadow);
    }
}

// Folds a slope across the contour into a groove along it.
void foldAtContour(uint16_t* heights, int64_t count, int32_t low) {
    for (int64_t i = 0; i < count; ++i) {
        heights[i] = static_cast<uint16_t>(std::abs(heights[i] + low));
    }
}

}  // namespace

int reliefMargin(const GxBevelProperty* record, ReliefPlace place) {
    return record ? static_cast<int>(ReliefShape(*record, place).margin) : 0;
}

void renderRelief(GxECore::ParamPostProcessing* param, const GxBevelProperty* record,
                  ReliefPlace place) {
    const TextMask text(param);
    if (!record || !text.isValid()) return;
    const ReliefShape shape(*record, place);
    if (!shape.isVisible()) return;
    const ReliefGeometry geometry(text, shape);
    const ReliefPlanes planes(geometry);
    if (!isAllocated(*param, planes)) return;
    const int64_t width = geometry.width;

    // 1. The contour.
    std::memset(planes.coverage, 0, static_cast<size_t>(width * geometry.height));
    text.copyTo(planes.coverage + geometry.padding * width + geometry.padding, width);
    const kernels::ContourPlanes contour{width, geometry.height, planes.coverage,
                                         planes.alongColumns, planes.alongRows};
    kernels::contourDistances(contour);
    // 2. The slope.
    kernels::reliefHeights(contour, shape.slope, planes.heights, planes.scratch);
    int64_t height = geometry.height - 2;
    // 3. Its shape.
    kernels::boxBlur(planes.heights, width, height, shape.blur, planes.scratch);
    height -= 2 * shape.blur;
    if (place == ReliefPlace::kGrooveAcross) {
        foldAtContour(planes.heights, width * height, shape.slope.low);
    }
    // 4. Light.
    kernels::reliefLight(planes.heights, width, height, reliefLighting(*record, shape),
                         planes.scratch);
    height -= 2;
    // 5. Soft light.
    kernels::boxBlur(planes.heights, width, height, shape.soften, planes.scratch);
    // 6. The tints.
    const Tints tints{tint(record->highlightColor, record->opacity),
                      tint(record->shadowColor, record->opacity)};
    paint(text, shape, geometry, planes, partInFirstLayer(shape, param->other), tints, param->dst);
    if (shape.isAcross() && param->other) {
        paint(text, shape, geometry, planes, ReliefPart::kCovered, tints, param->other);
    }
}

}  // namespace GxFontEffect
