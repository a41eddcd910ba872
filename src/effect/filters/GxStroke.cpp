#include "effect/filters/GxStroke.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "effect/filters/TextMask.h"
#include "raster/BlendCut.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"
#include "raster/kernels/BlendRows.h"
#include "raster/kernels/DiscDilation.h"

namespace GxFontEffect {

// The stroke in steps:
//   1. build the disc of the stroke's radius;
//   2. copy the mask with one pixel of background around it, so that edges on the box's border are
//      edges too;
//   3. spread the glyphs, the background or both by the disc, into planes larger by its radius;
//   4. centred: keep what both spreads reach;
//   5. tint the layers through the result, or paint them through it with the fill.

namespace {

constexpr int64_t kFrame = 1;  // pixels of background around the box

// 0-1 to 0-255, rounded to nearest; NaN is 0.
uint8_t coverageByte(float coverage) {
    return static_cast<uint8_t>(toInt(clampFloat(coverage, 0.0f, 1.0f) * 255.0f + 0.5f));
}

float effectiveRadius(float size, int position) {
    return position == GxStrokeProperty::kCenter ? size * 0.5f : size;
}

bool liesWithin(int64_t first, int64_t count, int64_t extent) {
    return first >= 0 && first + count <= extent;
}

// The band of a parameter block; empty when it leaves its planes.
kernels::DilationBand bandOf(const StrokeDTArgs* args) {
    kernels::DilationBand band;
    if (!args || !args->out || !args->mask || !args->kernel || args->kernelSize < 1) return band;
    const int64_t rows = int64_t{args->rowEnd} - args->rowBegin;
    const int64_t maskY = int64_t{args->rowBegin} + args->maskOriginY;
    const int64_t half = (args->kernelSize - 1) / 2;
    const int64_t outY = int64_t{args->rowBegin} + args->outOriginY - half;
    const int64_t outX = args->outOriginX - half;
    const int64_t reach = int64_t{args->kernelSize} - 1;
    if (rows < 1 || args->columns < 1 || !liesWithin(maskY, rows, args->maskHeight) ||
        !liesWithin(args->maskOriginX, args->columns, args->maskStride) ||
        !liesWithin(outY, rows + reach, args->outHeight) ||
        !liesWithin(outX, args->columns + reach, args->outStride)) {
        return band;
    }
    band.mask = args->mask + maskY * args->maskStride + args->maskOriginX;
    band.maskStride = args->maskStride;
    band.columns = args->columns;
    band.rows = rows;
    band.kernel = args->kernel;
    band.kernelSize = args->kernelSize;
    band.out = args->out + outY * args->outStride + outX;
    band.outStride = args->outStride;
    return band;
}

void spreadByPosition(int position, StrokeDTArgs& args) {
    if (position == GxStrokeProperty::kOutside) {
        GxStroke::partalDTStrokeOutside(&args);
    } else if (position == GxStrokeProperty::kCenter) {
        GxStroke::partalDTStrokeCenter(&args);
    } else {
        GxStroke::partalDTStrokeInside(&args);
    }
}

}  // namespace

int makeCircleKernel(unsigned char** out, float radius) {
    const int64_t r = toInt(radius + 0.5f);
    const int64_t side = 2 * r + 1;
    const int k = saturateInt(side);
    CArray<uint8_t> cells = out ? allocateCells<uint8_t>(side, side) : nullptr;
    if (!cells) return k;

    for (int64_t y = 0; y <= r; ++y) {
        uint8_t* middle = cells.get() + (r + y) * side + r;
        for (int64_t x = 0; x <= r; ++x) {
            const float distance = std::sqrt(static_cast<float>(x * x + y * y));
            middle[x] = middle[-x] = coverageByte(radius - distance + 1.0f);
        }
        if (y != 0)
            std::memcpy(cells.get() + (r - y) * side, middle - r, static_cast<size_t>(side));
    }
    cells[static_cast<size_t>(r * side + r)] = coverageByte(radius);
    *out = cells.release();
    return k;
}

int GxStroke::partalDTStrokeOutside(void* args) {
    kernels::dilateOutside(bandOf(static_cast<const StrokeDTArgs*>(args)));
    return 0;
}

int GxStroke::partalDTStrokeInside(void* args) {
    kernels::dilateInside(bandOf(static_cast<const StrokeDTArgs*>(args)));
    return 0;
}

int GxStroke::partalDTStrokeCenter(void* args) {
    const auto* planes = static_cast<const StrokeDTArgs*>(args);
    kernels::DilationBand band = bandOf(planes);
    if (!band.out || planes->planeSize < int64_t{planes->outStride} * planes->outHeight) return 0;
    kernels::dilateOutside(band);
    band.out += planes->planeSize;
    kernels::dilateInside(band);
    return 0;
}

namespace {

// The core that paints with such a record; null when there is none, or no memory.
std::unique_ptr<GxECoreBase> makeFill(const GxProperty& record) {
    std::unique_ptr<GxECoreBase> core;
    if (dynamic_cast<const GxRadialGradientProperty*>(&record)) {
        core.reset(new (std::nothrow) GxRadialGradient);
    } else if (dynamic_cast<const GxLinearGradientProperty*>(&record)) {
        core.reset(new (std::nothrow) GxLinearGradient);
    } else {
        core.reset(new (std::nothrow) GxPattern);
    }
    if (core) core->setProperty(&record);
    return core && core->getProperty() ? std::move(core) : nullptr;
}

bool isFill(const GxProperty* record) {
    return dynamic_cast<const GxLinearGradientProperty*>(record) ||
           dynamic_cast<const GxPatternProperty*>(record);
}

}  // namespace

void GxStroke::setProperty(const GxProperty* source) {
    const auto* record = dynamic_cast<const GxStrokeProperty*>(source);
    if (!record) return;
    std::unique_ptr<GxECoreBase> fill;
    if (isFill(record->fill)) {
        fill = makeFill(*record->fill);
        if (!fill) {
            keep(nullptr);
            return;
        }
    }
    std::unique_ptr<GxStrokeProperty> copy(new (std::nothrow) GxStrokeProperty(*record));
    if (copy) copy->fill = fill ? fill->getProperty() : nullptr;
    if (keep(std::move(copy))) ownFill = std::move(fill);
}

int GxStroke::getOffset() {
    if (!property) return 0;
    switch (property->position) {
        case GxStrokeProperty::kOutside:
            return toInt(property->size + 0.5f);
        case GxStrokeProperty::kCenter:
            return toInt(property->size * 0.5f + 0.5f);
        default:
            return 0;
    }
}

int GxStroke::getReach() {
    if (!property) return 0;
    const float radius = effectiveRadius(property->size, property->position);
    return saturateInt(std::max<int64_t>(toInt(radius + 0.5f), 0) + kFrame);
}

std::optional<StrokeBand> makeStrokeBand(GxECore::ParamPostProcessing& param, float size,
                                         int position) {
    const TextMask text(&param);
    if (!text.isValid()) return std::nullopt;
    const bool centred = position == GxStrokeProperty::kCenter;

    // 1. The disc.
    const float radius = effectiveRadius(size, position);
    unsigned char* cells = nullptr;
    const int kernelSize = makeCircleKernel(&cells, radius);
    const CArray<unsigned char> kernel(cells);
    if (kernelSize < 1 || !isAllocated(param, kernel)) return std::nullopt;
    const int64_t half = kernelSize >> 1;

    // 2. The framed mask. The planes' sizes bound every extent to 32 bits.
    // It lies behind the planes, in the same rows: one allocation (see WorkPlane).
    const int64_t width = text.width + 2 * kFrame;
    const int64_t height = text.height + 2 * kFrame;
    const int64_t outHeight = height + 2 * half;
    const int64_t outRows = outHeight * (centred ? 2 : 1);
    WorkPlane<uint8_t> plane(width + 2 * half, outRows + height);
    if (!isAllocated(param, plane)) return std::nullopt;
    const int64_t planeSize = plane.width * outHeight;
    const uint8_t* mask = plane.row(outRows);
    text.copyTo(plane.row(outRows + kFrame) + kFrame, plane.width);

    // 3. The spread.
    StrokeDTArgs args;
    args.out = plane.data();
    args.mask = mask;
    args.kernel = kernel.get();
    args.columns = static_cast<int32_t>(width);
    args.maskHeight = args.rows = args.rowEnd = static_cast<int32_t>(height);
    args.maskStride = args.outStride = static_cast<int32_t>(plane.width);
    args.outHeight = static_cast<int32_t>(outHeight);
    args.outOriginY = args.outOriginX = static_cast<int32_t>(half);
    args.planeSize = static_cast<int32_t>(planeSize);
    args.radius = toInt(radius);
    args.kernelSize = kernelSize;
    spreadByPosition(position, args);

    // 4. What both spreads reach.
    if (centred) kernels::minimum(plane.data(), plane.data() + planeSize, planeSize);
    return StrokeBand{std::move(plane), text.left - kFrame - half, text.top - kFrame - half,
                      outHeight};
}

void GxStroke::doPostProcessing(GxECore::ParamPostProcessing* param) {
    if (!param || !property) return;
    const auto band = makeStrokeBand(*param, property->size, property->position);
    if (!band) return;

    // 5. The tint.
    const bool onTop =
        property->position == GxStrokeProperty::kCenter && param->mode != GXE_MODE_TWO_LAYERS;
    const int blend = onTop ? GXE_BLEND_SRC_OVER : GXE_BLEND_DST_OVER;
    if (ownFill) {
        paintFill(*band, blend, *param);
        return;
    }
    for (const GxBitmap* layer : {param->dst, param->other}) {
        drawTinted(band->x, band->y, layer, band->plane.data(), band->width(), band->height,
                   band->width(), property->color, blend);
    }
}

// The fill's core paints a picture of the stroke's box wherever the band is; the band's coverage
// weakens it as it weakens a tint.
void GxStroke::paintFill(const StrokeBand& band, int blend, GxECore::ParamPostProcessing& param) {
    const GxRect& text = *param.textRect;
    const int64_t margin = std::max(getOffset(), 0);
    const int64_t left = text.left - margin, top = text.top - margin;
    const GxRect box(0, 0, static_cast<int32_t>(text.width() + 2 * margin),
                     static_cast<int32_t>(text.height() + 2 * margin));
    if (box.isEmpty()) return;
    GxBitmap mask(box.width(), box.height(), 1);
    GxBitmap colors(box.width(), box.height(), 4);
    const WorkPlane<kernels::Rgba> nothing(box.width());
    if (!isAllocated(param, mask.data, colors.data, nothing)) return;
    for (int64_t y = 0; y < mask.height; ++y) {
        std::memcpy(mask.data + y * mask.width, band.plane.row(top + y - band.y) + (left - band.x),
                    mask.width);
    }

    GxECore::ParamPostProcessing block;
    GxRect whole = box;
    block.dst = &colors;
    block.src = &mask;
    block.textRect = &whole;
    ownFill->doPostProcessing(&block);
    if (block.outOfMemory) {
        param.outOfMemory = true;
        return;
    }
    auto* pixels = reinterpret_cast<kernels::Rgba*>(colors.data);
    for (size_t y = 0; y < mask.height; ++y) {
        const size_t row = y * mask.width;
        kernels::mixLayersRow(pixels + row, nothing.data(), mask.data + row, mask.width);
    }
    const auto blendRows =
        blend == GXE_BLEND_SRC_OVER ? kernels::srcOver32Rows : kernels::dstOver32Rows;
    for (const GxBitmap* layer : {param.dst, param.other}) {
        blendRows(cut32OntoLayer(left, top, layer, colors.data, box.width(), box.height(),
                                 int64_t{box.width()} * 4),
                  kernels::SourceOrder::kRgba);
    }
}

}  // namespace GxFontEffect
