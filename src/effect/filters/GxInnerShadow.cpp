#include "effect/filters/GxInnerShadow.h"

#include <algorithm>
#include <cstring>

#include "effect/filters/Shadow.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/GxBlender.h"

namespace GxFontEffect {

// The shade in steps:
//   1. when the shift leaves nothing but background to see, tint the glyphs whole;
//   2. blur the rows of the inverse coverage, each taken where the shift puts it; blank rows and
//      those beyond the box are background;
//   3. blur the columns;
//   4. keep the shade inside the glyphs, and shade the bands that the shift exposes whole;
//   5. tint the layer through it.
// Building the shifted rows straight away keeps the planes at the box's width: only cells that
// some pixel of the box reads are ever computed.

namespace {

// The shifted background with its blurred edge lies over the whole box. Asymmetric at the far ends,
// where one pixel decides: deliberate.
bool coversBox(const TextMask& text, const ShadowShift& shift, int64_t radius) {
    return text.width + radius + shift.x < 0 || -radius + shift.x >= text.width ||
           -radius + shift.y >= text.height || text.height + radius + shift.y < 0;
}

void tintWhole(const TextMask& text, const GxBitmap* layer, uint32_t color) {
    drawTinted(text.left + text.firstColumn, text.top + text.firstRow, layer,
               text.row(text.firstRow), text.lastColumn - text.firstColumn,
               text.lastRow - text.firstRow, text.stride, color, GXE_BLEND_DST_OVER);
}

// Coverage of row y as the first column's blur window sees it: `line` holds width + 2 radius cells,
// cell i is column i - radius - shift.
void shiftedRow(const TextMask& text, int64_t y, int64_t offset, uint8_t* line, int64_t width) {
    const uint8_t* coverage = text.row(y);
    const int64_t first = std::clamp<int64_t>(text.firstColumn + offset, 0, width);
    const int64_t last = std::clamp<int64_t>(text.lastColumn + offset, first, width);
    if (!coverage || first == last) {
        std::memset(line, 0, static_cast<size_t>(width));
        return;
    }
    std::memset(line, 0, static_cast<size_t>(first));
    std::memcpy(line + first, coverage + (first - offset - text.firstColumn),
                static_cast<size_t>(last - first));
    std::memset(line + last, 0, static_cast<size_t>(width - last));
}

// The rows of the box from the first to the last with any coverage.
struct InkRows {
    explicit InkRows(const TextMask& text) : begin(text.firstRow), end(text.lastRow) {
        while (begin < end && isBlank(text, begin)) ++begin;
        while (end > begin && isBlank(text, end - 1)) --end;
    }
    static bool isBlank(const TextMask& text, int64_t y) {
        const uint8_t* coverage = text.row(y);
        if (!coverage) return true;
        uint8_t any = 0;
        for (int64_t x = 0; x < text.lastColumn - text.firstColumn; ++x) any |= coverage[x];
        return any == 0;
    }
    int64_t begin;
    int64_t end;
};

void blurShiftedRows(const TextMask& text, const InkRows& ink, const ShadowShift& shift,
                     const kernels::BlurWeights& weights, const WorkPlane<uint8_t>& lines,
                     const WorkPlane<uint8_t>& background, uint8_t* scratch) {
    const int64_t offset = weights.radius + int64_t{shift.y};
    const int64_t first = std::clamp<int64_t>(offset + ink.begin, 0, background.height);
    const int64_t last = std::clamp<int64_t>(offset + ink.end, first, background.height);
    std::memset(background.data(), 255, static_cast<size_t>(first * background.width));
    std::memset(background.row(last), 255,
                static_cast<size_t>((background.height - last) * background.width));
    for (int64_t y = first; y < last; y += lines.height) {
        const int64_t rows = std::min(lines.height, last - y);
        for (int64_t i = 0; i < rows; ++i) {
            shiftedRow(text, y + i - offset, weights.radius + int64_t{shift.x}, lines.row(i),
                       lines.width);
        }
        kernels::blurRows(
            {lines.data(), lines.width, background.row(y), background.width, text.width, rows},
            weights, kernels::BlurInput::kInverse, scratch);
    }
}

// Cells [begin, end) of `extent` that see something of the box, the others are exposed background.
struct Span {
    Span(int64_t extent, int64_t radius, int64_t shift)
        : begin(std::max<int64_t>(shift - radius, 0)),
          end(std::min<int64_t>(extent + radius + shift, extent)) {}
    bool contains(int64_t i) const { return i >= begin && i < end; }
    int64_t begin;
    int64_t end;
};

// Keeps the shade of covered cells.
void keepCovered(uint8_t* shade, const uint8_t* coverage, int64_t count) {
    for (int64_t x = 0; x < count; ++x) shade[x] = coverage[x] != 0 ? shade[x] : uint8_t{0};
}

void keepInGlyphs(const TextMask& text, const InkRows& ink, const ShadowShift& shift,
                  int64_t radius, const WorkPlane<uint8_t>& shade) {
    const Span rows(text.height, radius, shift.y);
    const Span columns(text.width, radius, shift.x);
    const auto fill = [](uint8_t* cells, int64_t begin, int64_t end, int value) {
        if (begin < end) std::memset(cells + begin, value, static_cast<size_t>(end - begin));
    };
    for (int64_t y = 0; y < text.height; ++y) {
        uint8_t* cells = shade.row(y);
        if (!rows.contains(y)) {
            fill(cells, 0, text.width, 255);
            continue;
        }
        if (y >= ink.begin && y < ink.end) {
            fill(cells, 0, text.firstColumn, 0);
            keepCovered(cells + text.firstColumn, text.row(y), text.lastColumn - text.firstColumn);
            fill(cells, text.lastColumn, text.width, 0);
        } else {
            fill(cells, 0, text.width, 0);
        }
        fill(cells, 0, std::min(columns.begin, text.width), 255);
        fill(cells, std::max<int64_t>(columns.end, 0), text.width, 255);
    }
}

}  // namespace

void GxInnerShadow::computeGaussianWeights(int* weights, int* sum, int radius) {
    fillGaussianWeights(weights, sum, radius, kShadowCentreWeight, WeightRounding::kSingle);
}

void GxInnerShadow::setProperty(const GxProperty* source) {
    const auto* record = dynamic_cast<const GxInnerShadowProperty*>(source);
    if (!record) return;
    const GxInnerShadowProperty reduced(record->angle, record->distance, record->size,
                                        record->color, record->opacity);
    GxPropertyCore::setProperty(&reduced);
}

void GxInnerShadow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    const TextMask cast = param->choked ? text.over(*param->choked) : text;
    const int64_t radius = blurRadiusOf(property->size);
    const ShadowShift shift = shadowShift(property->angle, property->distance);

    // 1. The shortcut.
    if (coversBox(text, shift, radius)) {
        tintWhole(text, param->dst, property->color);
        return;
    }
    const WorkPlane<uint8_t> lines(text.width + 2 * radius, kernels::kBlurStripWidth,
                                   Contents::kAny);
    // The extents that let the columns be blurred in place.
    const int64_t columns = roundUp(text.width, kernels::kBlurStripWidth);
    const int64_t rows = roundUp(text.height, 2);
    const WorkPlane<uint8_t> shade(columns, rows + 2 * radius);
    const WorkPlane<uint8_t> scratch(
        kernels::blurScratchBytes(std::max(lines.width, columns), shade.height, radius), 1,
        Contents::kAny);
    const BlurTaps taps(radius);
    if (!isAllocated(*param, lines, shade, scratch, taps)) return;
    const kernels::BlurWeights weights = taps.compute(computeGaussianWeights);

    // 2. Rows.
    const InkRows ink(text);
    blurShiftedRows(cast, ink, shift, weights, lines, shade, scratch.data());
    // 3. Columns, where there are glyphs.
    const int64_t first = ink.begin - ink.begin % 2;
    kernels::blurColumns({shade.row(first), columns, shade.row(first), columns, columns,
                          roundUp(ink.end - first, 2)},
                         weights, kernels::BlurInput::kDirect, scratch.data());
    // 4. Inside only.
    keepInGlyphs(text, ink, shift, radius, shade);
    // 5. The tint.
    drawTinted(text.left, text.top, param->dst, shade.data(), text.width, text.height, columns,
               property->color, GXE_BLEND_DST_OVER);
}

}  // namespace GxFontEffect
