// Moves parts of a plane into vectors that run along the blur, and back. Included once per target.
#if defined(GX_BLUR_TRANSPOSE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_BLUR_TRANSPOSE_INL_H
#undef GX_BLUR_TRANSPOSE_INL_H
#else
#define GX_BLUR_TRANSPOSE_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

#include "raster/kernels/BlurMeans-inl.h"
#include "raster/kernels/Transpose-inl.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// 16 bytes of row i at rows + i x stride, for i below kLanes: turned into the eight pairs of a
// strip, 2 x 8 vectors.
HWY_INLINE void loadPairs(const uint8_t* const* rows, int64_t offset, uint8_t* strip) {
    for (int64_t half = 0; half < 2; ++half) {
        V16 v[8];
        for (int64_t i = 0; i < 8; ++i) {
            const uint8_t* const* row = rows + 8 * half + i;
            v[i] = lanes16(
                loadBlocks([&](int64_t block) HWY_ATTR { return row[block * kBlock] + offset; }));
        }
        transpose(d16, v);
        for (int64_t i = 0; i < 8; ++i)
            hn::StoreU(bytes(v[i]), d8, strip + (2 * i + half) * kLanes);
    }
}

// The cells of `count` rows of `length` cells, at most kLanes of them, as a strip. Lanes beyond
// repeat the last row.
inline void loadRows(const uint8_t* in, int64_t stride, int64_t count, int64_t length,
                     uint8_t* strip) {
    const uint8_t* rows[kLanes];
    for (int64_t i = 0; i < kLanes; ++i) rows[i] = in + std::min(i, count - 1) * stride;
    int64_t x = 0;
    for (; x + kBlock <= length; x += kBlock) loadPairs(rows, x, strip + x * kLanes);
    if (x == length) return;
    uint8_t rest[kLanes][kBlock] = {};
    for (int64_t i = 0; i < kLanes; ++i) {
        std::memcpy(rest[i], rows[i] + x, static_cast<size_t>(length - x));
        rows[i] = rest[i];
    }
    loadPairs(rows, 0, strip + x * kLanes);
}

// Cells [x, x + kLanes) of `count` columns.
HWY_INLINE V8 loadCells(const uint8_t* cells, int64_t count) {
    if (count == kLanes) return hn::LoadU(d8, cells);
    uint8_t padded[kLanes] = {};
    std::memcpy(padded, cells, static_cast<size_t>(count));
    return hn::LoadU(d8, padded);
}

// The same for columns.
inline void loadColumns(const uint8_t* in, int64_t stride, int64_t count, int64_t length,
                        uint8_t* strip) {
    for (int64_t y = 0; y < length; y += 2, in += 2 * stride, strip += 2 * kLanes) {
        const V8 a = loadCells(in, count);
        const V8 b = y + 1 < length ? loadCells(in + stride, count) : a;
        hn::StoreU(hn::InterleaveLower(d8, a, b), d8, strip);
        hn::StoreU(hn::InterleaveUpper(d8, a, b), d8, strip + kLanes);
    }
}

// Where the block that starts at x has to start to end with the row.
HWY_INLINE int64_t blockStart(int64_t x, int64_t length) {
    return HWY_MIN(x, length - kBlock);
}

// Column x of `count` rows gets vector x.
inline void storeRows(const uint8_t* vectors, uint8_t* rows, int64_t stride, int64_t count,
                      int64_t length) {
    if (length < kBlock) {
        for (int64_t x = 0; x < length; ++x) {
            for (int64_t i = 0; i < count; ++i) rows[i * stride + x] = vectors[x * kLanes + i];
        }
        return;
    }
    for (int64_t x = 0; x < length; x += kBlock) {
        const int64_t start = blockStart(x, length);
        V8 v[16];
        for (int64_t i = 0; i < kBlock; ++i) v[i] = hn::LoadU(d8, vectors + (start + i) * kLanes);
        transpose(d8, v);
        for (int64_t i = 0; i < kBlock; ++i) {
            uint8_t* to = rows + start + i * stride;
            forEachBlockOf(v[i], [&](int64_t block, hn::Vec<decltype(dBlock)> part) HWY_ATTR {
                if (i + block * kBlock < count) {
                    hn::StoreU(part, dBlock, to + block * kBlock * stride);
                }
            });
        }
    }
}

// Row y of `count` columns gets vector y.
inline void storeColumns(const uint8_t* vectors, uint8_t* columns, int64_t stride, int64_t count,
                         int64_t length) {
    for (int64_t y = 0; y < length; ++y, columns += stride, vectors += kLanes) {
        if (count == kLanes) {
            hn::StoreU(hn::LoadU(d8, vectors), d8, columns);
        } else {
            std::memcpy(columns, vectors, static_cast<size_t>(count));
        }
    }
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
