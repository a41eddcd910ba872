#include "raster/kernels/BlendRows.h"

#include "raster/kernels/PlainBlendRows.h"
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

// `d` under which `s`, already scaled by its coverage, is put. Where the destination is transparent
// and the source is not, the old colour bytes go.
HWY_INLINE V8 dstOver(V8 d, Channels s, V16 sourceIsEmpty) {
    const V16 alpha = alphaFactor(d);
    const V16 replaced = isZero(hn::Or(alpha, sourceIsEmpty));
    return hn::SaturatedAdd(clearWhere(replaced, d), join(scale(s, inverse(alpha))));
}

struct SrcOver8 {
    Tint tint;
    V8 weakest;  // the strongest mask byte that gives no step of alpha
    V16 alphaPlusOne;
    bool opaque;

    explicit HWY_INLINE SrcOver8(Rgba color)
        : tint(color),
          weakest(hn::Set(d8, static_cast<uint8_t>(255 / (color.a + 1)))),
          alphaPlusOne(hn::Set(d16, static_cast<uint16_t>(color.a + 1))),
          opaque(color.a == 255) {}

    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        const V8 all = hn::LoadU(d8, mask);
        const V8 m = hn::IfThenZeroElse(hn::Eq(hn::Min(all, weakest), all), all);
        if (allBytesAre(m, 0)) return;
        if (opaque && allBytesAre(m, 255)) {
            for (size_t i = 0; i < 4; ++i) storePixels(tint.pixels, out + i * kVectorPixels);
            return;
        }
        const MaskBlock block(m);
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            const V16 factor = block.factor(i);
            const V16 alpha = hn::ShiftLeft<8>(hn::MulHigh(alphaPlusOne, factor));
            const V8 d = join(scale(split(loadPixels(p)), inverse(alpha)));
            storePixels(hn::SaturatedAdd(d, join(tint.scaled(factor))), p);
        }
    }
};

struct DstOver8 {
    Tint tint;
    bool onOff;  // any coverage counts as full

    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        V8 m = hn::LoadU(d8, mask);
        if (allBytesAre(m, 0)) return;
        if (onOff) m = hn::VecFromMask(d8, hn::Ne(m, hn::Zero(d8)));
        V8 d[4];
        for (size_t i = 0; i < 4; ++i) d[i] = loadPixels(out + i * kVectorPixels);
        if (allOpaque(hn::And(hn::And(d[0], d[1]), hn::And(d[2], d[3])))) return;
        const MaskBlock block(m);
        for (size_t i = 0; i < 4; ++i) {
            const V16 factor = block.factor(i);
            storePixels(dstOver(d[i], tint.scaled(factor), isZero(factor)),
                        out + i * kVectorPixels);
        }
    }
};

// Onto what is there, weakened by the mask: (d + under + 1) x m >> 8, at most 255. The formula's
// cases for an opaque destination and a full mask give the same number. A transparent destination
// takes the tint as it is: its old colour goes and the weakening is left out.
struct DstOverSa8 {
    Tint tint;

    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        const V8 m = hn::LoadU(d8, mask);
        if (allBytesAre(m, 0)) return;
        const MaskBlock block(m);
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            const V8 d = loadPixels(p);
            const V16 factor = block.factor(i);
            const V16 alpha = alphaFactor(d);
            const V16 empty = isZero(alpha);
            const Channels old = split(clearWhere(empty, d));
            const Channels under = scale(tint.scaled(factor), inverse(alpha));
            const V16 weakening = hn::Or(factor, hn::And(empty, hn::Set(d16, 0xFF00)));
            const V16 most = hn::Set(d16, 255);
            const Channels sum = {hn::Min(scale(hn::Add(old.rb, under.rb), weakening), most),
                                  hn::Min(scale(hn::Add(old.ga, under.ga), weakening), most)};
            const V8 uncovered = bytes(isZero(factor));
            storePixels(hn::IfVecThenElse(uncovered, d, join(sum)), p);
        }
    }
};

struct Overwrite8 {
    V8 color;  // alpha 0
    V16 alphaPlusOne;

    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        const MaskBlock block(hn::LoadU(d8, mask));
        for (size_t i = 0; i < 4; ++i) {
            const V16 alpha = hn::ShiftLeft<8>(hn::MulHigh(alphaPlusOne, block.factor(i)));
            storePixels(hn::Or(color, onlyAlpha(bytes(alpha))), out + i * kVectorPixels);
        }
    }
};

struct Max8 {
    HWY_INLINE void operator()(uint8_t* out, const uint8_t* mask) const {
        hn::StoreU(hn::Max(hn::LoadU(d8, out), hn::LoadU(d8, mask)), d8, out);
    }
};

template <SourceOrder kOrder>
HWY_INLINE V8 loadSource(const Rgba* p) {
    const V8 s = loadPixels(p);
    if constexpr (kOrder == SourceOrder::kBgra) return shuffled(s, kSwapRedBlue);
    if constexpr (kOrder == SourceOrder::kArgb) return shuffled(s, kArgbToRgba);
    return s;
}

template <SourceOrder kOrder>
struct SrcOver32 {
    HWY_INLINE void operator()(Rgba* out, const Rgba* source) const {
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            const V8 s = loadSource<kOrder>(source + i * kVectorPixels);
            const V8 d = join(scale(split(loadPixels(p)), inverse(alphaFactor(s))));
            storePixels(hn::SaturatedAdd(d, s), p);
        }
    }
};

template <SourceOrder kOrder>
struct DstOver32 {
    HWY_INLINE void operator()(Rgba* out, const Rgba* source) const {
        V8 s[4], d[4];
        for (size_t i = 0; i < 4; ++i) s[i] = loadSource<kOrder>(source + i * kVectorPixels);
        if (allTransparent(hn::Or(hn::Or(s[0], s[1]), hn::Or(s[2], s[3])))) return;
        for (size_t i = 0; i < 4; ++i) d[i] = loadPixels(out + i * kVectorPixels);
        if (allOpaque(hn::And(hn::And(d[0], d[1]), hn::And(d[2], d[3])))) return;
        for (size_t i = 0; i < 4; ++i) {
            const V16 empty = isZero(alphaFactor(s[i]));
            storePixels(dstOver(d[i], split(clearWhere(empty, s[i])), empty),
                        out + i * kVectorPixels);
        }
    }
};

struct SwapRedBlue {
    HWY_INLINE void operator()(Rgba* out) const {
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            storePixels(shuffled(loadPixels(p), kSwapRedBlue), p);
        }
    }
};

void srcOver8Rows(const BlendArea& area, Rgba color) {
    forEachBlockOf<Rgba, uint8_t>(area, SrcOver8(color));
}

void dstOver8Rows(const BlendArea& area, Rgba color) {
    forEachBlockOf<Rgba, uint8_t>(area, DstOver8{Tint(color), false});
}

void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    forEachBlockOf<Rgba, uint8_t>(area, DstOver8{Tint(color), true});
}

void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    forEachBlockOf<Rgba, uint8_t>(area, DstOverSa8{Tint(color)});
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

HWY_EXPORT(srcOver8Rows);
HWY_EXPORT(dstOver8Rows);
HWY_EXPORT(dstOverNsa8Rows);
HWY_EXPORT(dstOverSa8Rows);
HWY_EXPORT(overwrite8Rows);
HWY_EXPORT(max8Rows);
HWY_EXPORT(srcOver32Rows);
HWY_EXPORT(dstOver32Rows);
HWY_EXPORT(swapRedBlueRow);

void srcOver8Rows(const BlendArea& area, Rgba color) {
    HWY_DYNAMIC_DISPATCH(srcOver8Rows)(area, color);
}
void dstOver8Rows(const BlendArea& area, Rgba color) {
    HWY_DYNAMIC_DISPATCH(dstOver8Rows)(area, color);
}
void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    HWY_DYNAMIC_DISPATCH(dstOverNsa8Rows)(area, color);
}
void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    HWY_DYNAMIC_DISPATCH(dstOverSa8Rows)(area, color);
}
void overwrite8Rows(const BlendArea& area, Rgba color) {
    HWY_DYNAMIC_DISPATCH(overwrite8Rows)(area, color);
}
void max8Rows(const BlendArea& area) {
    HWY_DYNAMIC_DISPATCH(max8Rows)(area);
}
void srcOver32Rows(const BlendArea& area, SourceOrder order) {
    HWY_DYNAMIC_DISPATCH(srcOver32Rows)(area, order);
}
void dstOver32Rows(const BlendArea& area, SourceOrder order) {
    HWY_DYNAMIC_DISPATCH(dstOver32Rows)(area, order);
}
void swapRedBlueRow(Rgba* pixels, size_t count) {
    HWY_DYNAMIC_DISPATCH(swapRedBlueRow)(pixels, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
