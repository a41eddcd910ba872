#include "raster/kernels/BlendRows.h"

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/BlendRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

// Most special cases of the formulas vanish, because scale(c, 255) = c and scale(c, 0) = 0: an
// opaque source or destination needs no branch. What remains: a transparent destination is replaced
// (its colour bytes may be anything), and a source without coverage leaves the pixel alone.
HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

using plain::dstOver32Rows;
using plain::dstOver8Rows;
using plain::dstOverNsa8Rows;
using plain::dstOverSa8Rows;
using plain::max8Rows;
using plain::overwrite8Rows;
using plain::srcOver32Rows;
using plain::srcOver8Rows;
using plain::swapRedBlueRow;

#else

template <bool kOpaque>
struct SrcOver8 {
    Tint tint;
    V8 weakest;  // the strongest mask byte that gives no step of alpha
    V16 alphaPlusOne;

    explicit HWY_INLINE SrcOver8(Rgba color)
        : tint(color),
          weakest(hn::Set(d8, static_cast<uint8_t>(255 / (color.a + 1)))),
          alphaPlusOne(hn::Set(d16, static_cast<uint16_t>(color.a + 1))) {}

    HWY_INLINE V8 weights(V8 mask) const {
        if constexpr (kOpaque) return mask;
        return hn::IfThenZeroElse(hn::Eq(hn::Max(mask, weakest), weakest), mask);
    }
    HWY_INLINE V8 operator()(V8 d, V16 factor) const {
        V16 alpha = factor;
        if constexpr (!kOpaque) alpha = hn::ShiftLeft<8>(hn::MulHigh(alphaPlusOne, factor));
        return hn::SaturatedAdd(join(scale(split(d), inverse(alpha))), join(tint.scaled(factor)));
    }
    HWY_INLINE V8 full() const requires kOpaque { return tint.pixels; }
};

template <bool kOnOff>  // any coverage counts as full
struct DstOver8 {
    Tint tint;

    HWY_INLINE V8 weights(V8 mask) const { return kOnOff ? onOrOff(mask) : mask; }
    HWY_INLINE V8 operator()(V8 d, V16 factor) const {
        return dstOver(d, tint.scaled(factor), isZero(factor));
    }
};

// Onto what is there, weakened by the mask: (d + under + 1) x m >> 8, at most 255. The formula's
// cases for an opaque destination and a full mask give the same number. A transparent destination
// takes the tint as it is: its old colour goes and the weakening is left out.
struct DstOverSa8 {
    Tint tint;

    HWY_INLINE V8 weights(V8 mask) const { return mask; }
    HWY_INLINE V8 operator()(V8 d, V16 factor) const {
        const V16 alpha = alphaFactor(d);
        const V16 empty = isZero(alpha);
        const Channels old = split(clearWhere(empty, d));
        const Channels under = scale(tint.scaled(factor), inverse(alpha));
        const V16 weakening = hn::Or(factor, hn::And(empty, hn::Set(d16, 0xFF00)));
        const V16 most = hn::Set(d16, 255);
        const Channels sum = {hn::Min(scale(hn::Add(old.rb, under.rb), weakening), most),
                              hn::Min(scale(hn::Add(old.ga, under.ga), weakening), most)};
        return hn::IfVecThenElse(bytes(isZero(factor)), d, join(sum));
    }
};

struct Overwrite8 {
    V8 color;  // alpha 0
    V16 alphaPlusOne;

    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            const V16 alpha = hn::ShiftLeft<8>(hn::MulHigh(alphaPlusOne, maskFactor(mask + x)));
            storePixels(hn::Or(color, onlyAlpha(bytes(alpha))), out + x);
        }
    }
};

struct Max8 {
    HWY_INLINE void operator()(uint8_t* out, const uint8_t* mask) const {
        hn::StoreU(hn::Max(hn::LoadU(d8, out), hn::LoadU(d8, mask)), d8, out);
    }
};

// Source pixels in their own order; each pair of channels takes one step to get out.
template <SourceOrder kOrder>
struct SourceVector {
    V8 pixels;

    explicit HWY_INLINE SourceVector(const Rgba* p) : pixels(loadPixels(p)) {}

    HWY_INLINE Channels channels() const {
        constexpr uint8_t kNo = PixelShuffle::kZero;
        if constexpr (kOrder == SourceOrder::kBgra) {
            static constexpr PixelShuffle kRedBlue(2, kNo, 0, kNo);
            return {lanes16(kRedBlue(pixels)), split(pixels).ga};
        } else if constexpr (kOrder == SourceOrder::kArgb) {
            static constexpr PixelShuffle kGreenAlpha(2, kNo, 0, kNo);
            return {split(pixels).ga, lanes16(kGreenAlpha(pixels))};
        } else {
            return split(pixels);
        }
    }
    HWY_INLINE V16 alpha() const {
        constexpr int kAlpha = kOrder == SourceOrder::kArgb ? 0 : 3;
        return alphaFactor<kAlpha>(pixels);
    }
    HWY_INLINE V8 rgba() const {
        static constexpr PixelShuffle kBgraToRgba(2, 1, 0, 3), kArgbToRgba(1, 2, 3, 0);
        if constexpr (kOrder == SourceOrder::kBgra) return kBgraToRgba(pixels);
        if constexpr (kOrder == SourceOrder::kArgb) return kArgbToRgba(pixels);
        return pixels;
    }
};

template <SourceOrder kOrder>
struct SrcOver32 {
    HWY_INLINE bool isIdle(const Rgba*, const Rgba* source) const {
        return allBytesAre(anyBits(source), 0);
    }

    HWY_INLINE void operator()(Rgba* out, const Rgba* source) const {
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            Rgba* p = out + x;
            const SourceVector<kOrder> s(source + x);
            const V8 d = join(scale(split(loadPixels(p)), inverse(s.alpha())));
            storePixels(hn::SaturatedAdd(d, s.rgba()), p);
        }
    }
};

template <SourceOrder kOrder>
struct DstOver32 {
    HWY_INLINE bool isIdle(const Rgba*, const Rgba* source) const {
        const V8 any = anyBits(source);
        return kOrder == SourceOrder::kArgb ? allBytesAre(bytes(alphaFactor<0>(any)), 0)
                                            : allTransparent(any);
    }

    HWY_INLINE void operator()(Rgba* out, const Rgba* source) const {
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            Rgba* p = out + x;
            const SourceVector<kOrder> s(source + x);
            storePixels(dstOver(loadPixels(p), s.channels(), isZero(s.alpha())), p);
        }
    }
};

struct SwapRedBlue {
    HWY_INLINE void operator()(Rgba* out) const {
        static constexpr PixelShuffle kSwap(2, 1, 0, 3);
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            storePixels(kSwap(loadPixels(out + x)), out + x);
        }
    }
};

void srcOver8Rows(const BlendArea& area, Rgba color) {
    if (color.a == 255) {
        blendRows(area, SrcOver8<true>(color));
    } else {
        blendRows(area, SrcOver8<false>(color));
    }
}

void dstOver8Rows(const BlendArea& area, Rgba color) {
    blendRows(area, DstOver8<false>{Tint(color)});
}

void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    blendRows(area, DstOver8<true>{Tint(color)});
}

void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    blendRows(area, DstOverSa8{Tint(color)});
}

void overwrite8Rows(const BlendArea& area, Rgba color) {
    const V16 alphaPlusOne = hn::Set(d16, static_cast<uint16_t>(color.a + 1));
    color.a = 0;
    forEachBlockOf<Rgba, uint8_t>(area, Overwrite8{Tint(color).pixels, alphaPlusOne});
}

void max8Rows(const BlendArea& area) {
    forEachBlockOf<uint8_t, uint8_t>(area, Max8());
}

template <template <SourceOrder> class Block>
HWY_INLINE void blend32Rows(const BlendArea& area, SourceOrder order) {
    switch (order) {
        case SourceOrder::kRgba:
            return forEachBlockOf<Rgba, Rgba>(area, Block<SourceOrder::kRgba>());
        case SourceOrder::kBgra:
            return forEachBlockOf<Rgba, Rgba>(area, Block<SourceOrder::kBgra>());
        case SourceOrder::kArgb:
            return forEachBlockOf<Rgba, Rgba>(area, Block<SourceOrder::kArgb>());
    }
}

void srcOver32Rows(const BlendArea& area, SourceOrder order) {
    blend32Rows<SrcOver32>(area, order);
}

void dstOver32Rows(const BlendArea& area, SourceOrder order) {
    blend32Rows<DstOver32>(area, order);
}

void swapRedBlueRow(Rgba* pixels, size_t count) {
    forEachBlock(count, SwapRedBlue(), pixels);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(srcOver8Rows);
GX_EXPORT(dstOver8Rows);
GX_EXPORT(dstOverNsa8Rows);
GX_EXPORT(dstOverSa8Rows);
GX_EXPORT(overwrite8Rows);
GX_EXPORT(max8Rows);
GX_EXPORT(srcOver32Rows);
GX_EXPORT(dstOver32Rows);
GX_EXPORT(swapRedBlueRow);

void srcOver8Rows(const BlendArea& area, Rgba color) {
    GX_DISPATCH(srcOver8Rows)(area, color);
}
void dstOver8Rows(const BlendArea& area, Rgba color) {
    GX_DISPATCH(dstOver8Rows)(area, color);
}
void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    GX_DISPATCH(dstOverNsa8Rows)(area, color);
}
void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    GX_DISPATCH(dstOverSa8Rows)(area, color);
}
void overwrite8Rows(const BlendArea& area, Rgba color) {
    GX_DISPATCH(overwrite8Rows)(area, color);
}
void max8Rows(const BlendArea& area) {
    GX_DISPATCH(max8Rows)(area);
}
void srcOver32Rows(const BlendArea& area, SourceOrder order) {
    GX_DISPATCH(srcOver32Rows)(area, order);
}
void dstOver32Rows(const BlendArea& area, SourceOrder order) {
    GX_DISPATCH(dstOver32Rows)(area, order);
}
void swapRedBlueRow(Rgba* pixels, size_t count) {
    GX_DISPATCH(swapRedBlueRow)(pixels, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
