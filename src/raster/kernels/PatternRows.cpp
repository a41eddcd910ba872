// The fast pattern of raster/kernels/PatternRows.h.
//
// The colours repeat with the tile: each row of the tile is made once, as wide as it is before it
// repeats, and drawn on every row of the area that shows it. It is made only where one of those
// rows is covered. Columns find their picture pixels once for all rows; for a row, the two picture
// rows around it are weighted first, which leaves two weighted texels to each pixel.
//
// Sums of weighted bytes stay below 2^24, so that single precision adds them up exactly, also as
// shares of 65,536.
#include "raster/kernels/PatternRows.h"

#include <algorithm>
#include <cstring>

#include "raster/GxMath.h"
#define GX_WITHOUT_AVX3
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/PatternRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void drawPattern(const PatternFill& fill) {
    plain::patternRows(fill);
}

#else

// One texel: its four bytes as numbers.
inline constexpr hn::CappedTag<float, 4> dTexel;
using Texel = hn::Vec<decltype(dTexel)>;

constexpr float kShare = 1.0f / 65536;

// Pixels that are left out together where none of them is covered.
constexpr int64_t kCell = 8;

// --- steps ---

// The picture columns that a row needs, first and behind the last; the one behind the picture's
// last is its first again.
struct Span {
    int64_t begin;
    int64_t end;
};

Span findColumns(const PatternFill& fill, int64_t count) {
    const PatternTile& tile = fill.tile;
    Span span{tile.width, 0};
    for (int64_t x = 0; x < count; ++x) {
        const PatternSample sample(fill.firstColumn + x, tile.tileWidth, tile.scale, tile.width);
        fill.memory.columns[x] = {static_cast<int32_t>(sample.near),
                                  static_cast<float>(sample.weight) * kShare};
        span = {std::min(span.begin, sample.near), std::max(span.end, sample.near + 2)};
    }
    return span;
}

// Texels of two picture rows, weighted: 255 times the mean.
void mixRows(const PatternTile& tile, const PatternSample& row, const Span& span, float* texels) {
    const uint8_t* upper = tile.pixels + row.near * tile.width * 4;
    const uint8_t* lower = tile.pixels + row.next * tile.width * 4;
    const auto mix = [&](const auto d, int64_t from, int64_t to) HWY_ATTR {
        const hn::Rebind<uint8_t, decltype(d)> dBytes;
        const hn::RebindToSigned<decltype(d)> dInt;
        const auto numbers = [&](const uint8_t* bytes) HWY_ATTR {
            return hn::ConvertTo(d, hn::PromoteTo(dInt, hn::LoadU(dBytes, bytes)));
        };
        const auto near =
            hn::Mul(numbers(upper + from * 4), hn::Set(d, static_cast<float>(255 - row.weight)));
        const auto next =
            hn::Mul(numbers(lower + from * 4), hn::Set(d, static_cast<float>(row.weight)));
        hn::StoreU(hn::Add(near, next), d, texels + to * 4);
    };
    constexpr int64_t kTexels = hn::MaxLanes(dNumber) / 4;
    const int64_t end = std::min(span.end, tile.width);
    int64_t x = span.begin;
    for (; x + kTexels <= end; x += kTexels) mix(dNumber, x, x);
    for (; x < end; ++x) mix(dTexel, x, x);
    if (span.end > tile.width) mix(dTexel, 0, tile.width);
}

// Bytes A, R, G, B between a column's two texels.
HWY_INLINE void sample(const PatternColumn& column, const float* texels, Rgba* out) {
    const float* texel = texels + int64_t{column.near} * 4;
    const Texel nextWeight = hn::Set(dTexel, column.nextWeight);
    const Texel nearWeight = hn::Sub(hn::Set(dTexel, 255 * kShare), nextWeight);
    const Texel sum = hn::Add(hn::Mul(hn::LoadU(dTexel, texel), nearWeight),
                              hn::Mul(hn::LoadU(dTexel, texel + 4), nextWeight));
    const hn::Rebind<uint8_t, decltype(dTexel)> dBytes;
    hn::StoreU(hn::DemoteTo(dBytes, truncated(sum)), dBytes, reinterpret_cast<uint8_t*>(out));
}

// From bytes A, R, G, B to pixels: the alpha weakened, the colour premultiplied.
struct Premultiply {
    Numbers opacity;

    HWY_INLINE void operator()(Rgba* block) const {
        static constexpr PixelShuffle kToRgba(1, 2, 3, 0);
        const V32 low = hn::Set(d32, 255);
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            const V8 argb = loadPixels(block + x);
            const V32 alpha = hn::And(hn::BitCast(d32, argb), low);
            const Numbers weakened =
                hn::Mul(opacity, hn::ConvertTo(dNumber, hn::BitCast(dWhole, alpha)));
            const V32 a = hn::BitCast(d32, truncated(hn::Min(weakened, hn::Set(dNumber, 255.0f))));
            const V16 factor =
                lanes16(hn::BitCast(d8, hn::Or(hn::ShiftLeft<8>(a), hn::ShiftLeft<24>(a))));
            const V8 scaled = join(scale(split(kToRgba(argb)), factor));
            const V8 color = hn::And(scaled, hn::BitCast(d8, hn::Set(d32, 0x00FFFFFF)));
            storePixels(hn::Or(color, hn::BitCast(d8, hn::ShiftLeft<24>(a))), block + x);
        }
    }
};

// A row of pixels where a mask is not 0, for blendRow.
struct DstOverCovered {
    HWY_INLINE V8 weights(V8 mask) const { return onOrOff(mask); }
    HWY_INLINE V8 operator()(V8 d, V16 factor, V8 s) const { return dstOver(d, s, factor); }
    HWY_INLINE V8 onto(V8 d, V8 s) const { return dstOver(d, s); }
};

// --- rows of the tile ---

// The rows of the area that show one row of the tile.
struct TileRow {
    const PatternFill& fill;
    int64_t first;
    int64_t period;   // rows from one to the next
    int64_t columns;  // before the row repeats

    template <class Draw>
    HWY_INLINE void forEach(const Draw& draw) const {
        const BlendArea& area = fill.area;
        for (int64_t y = first; y < static_cast<int64_t>(area.height); y += period) {
            draw(area.source + y * area.sourceStride,
                 reinterpret_cast<Rgba*>(area.destination + y * area.destinationStride));
        }
    }

    // Marks the columns that are covered in any of the rows. Of narrow tiles, all.
    void findCovered() const {
        uint8_t* covered = fill.memory.covered;
        const auto width = static_cast<int64_t>(fill.area.width);
        const bool isNarrow = columns < 8 * kCell && columns < width;
        std::memset(covered, isNarrow, static_cast<size_t>(columns + kCell));
        if (isNarrow) return;
        forEach([&](const uint8_t* mask, Rgba*) HWY_ATTR {
            for (int64_t x = 0; x < width; x += columns) {
                const int64_t count = std::min(columns, width - x);
                for (int64_t i = 0; i < count; ++i) covered[i] |= mask[x + i];
            }
        });
    }

    // Fills the row of work memory, whatever is covered of it. False when nothing is.
    bool make(const Span& span) const {
        const PatternTile& tile = fill.tile;
        const PatternMemory& memory = fill.memory;
        bool isMixed = false;
        for (int64_t x = 0; x < columns; x += kCell) {
            uint64_t cell;
            std::memcpy(&cell, memory.covered + x, sizeof(cell));
            if (cell == 0) continue;
            if (!isMixed) {
                const PatternSample row(fill.firstRow + first, tile.tileHeight, tile.scale,
                                        tile.height);
                mixRows(tile, row, span, memory.texels);
                isMixed = true;
            }
            const int64_t end = std::min(x + kCell, columns);
            for (int64_t i = x; i < end; ++i) {
                sample(memory.columns[i], memory.texels, memory.row + i);
            }
        }
        return isMixed;
    }

    void premultiplyAndRepeat() const {
        Rgba* row = fill.memory.row;
        const Numbers opacity = hn::Set(dNumber, clampFloat(fill.tile.opacity, 0.0f, 255.0f));
        forEachBlock(static_cast<size_t>(columns), Premultiply{opacity}, row);
        const auto width = static_cast<int64_t>(fill.area.width);
        for (int64_t x = columns; x < width; x *= 2) {
            std::memcpy(row + x, row, static_cast<size_t>(std::min(x, width - x)) * sizeof(Rgba));
        }
    }
};

int64_t periodOf(int32_t tile, size_t extent) {
    const auto all = static_cast<int64_t>(extent);
    return tile > 0 ? std::min<int64_t>(tile, all) : all;
}

void drawPattern(const PatternFill& fill) {
    const BlendArea& area = fill.area;
    const int64_t columns = periodOf(fill.tile.tileWidth, area.width);
    const int64_t rows = periodOf(fill.tile.tileHeight, area.height);
    if (columns == 0) return;
    const Span span = findColumns(fill, columns);
    for (int64_t y = 0; y < rows; ++y) {
        const TileRow row{fill, y, rows, columns};
        row.findCovered();
        if (!row.make(span)) continue;
        row.premultiplyAndRepeat();
        row.forEach([&](const uint8_t* mask, Rgba* out) HWY_ATTR {
            blendRow(area.width, DstOverCovered(), out, mask, fill.memory.row);
        });
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(drawPattern);

void patternRows(const PatternFill& fill) {
    GX_DISPATCH(drawPattern)(fill);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
