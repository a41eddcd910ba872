// The whole-image steps of raster/kernels/BlendRows.h.
#include "raster/kernels/PlainBlendRows.h"
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/CompositeRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

using plain::clearUncoveredRow;
using plain::fadeAndUnpremultiplyRow;
using plain::mixLayersRow;

#else

struct MixLayers {
    HWY_INLINE void operator()(Rgba* out, const Rgba* back, const uint8_t* mask) const {
        const V8 m = hn::LoadU(d8, mask);
        if (allBytesAre(m, 255)) return;
        if (allBytesAre(m, 0)) {
            for (size_t i = 0; i < 4; ++i) {
                storePixels(loadPixels(back + i * kVectorPixels), out + i * kVectorPixels);
            }
            return;
        }
        const MaskBlock block(m);
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            const V16 factor = block.factor(i);
            const V8 under = loadPixels(back + i * kVectorPixels);
            storePixels(hn::SaturatedAdd(join(scale(split(under), inverse(factor))),
                                         join(scale(split(loadPixels(p)), factor))),
                        p);
        }
    }
};

struct FadeAndUnpremultiply {
    V16 factor;

    explicit HWY_INLINE FadeAndUnpremultiply(uint32_t alpha)
        : factor(hn::Set(d16, static_cast<uint16_t>(alpha << 8))) {}

    HWY_INLINE void operator()(Rgba* out) const {
        V8 p[4];
        for (size_t i = 0; i < 4; ++i) {
            p[i] = join(scale(split(loadPixels(out + i * kVectorPixels)), factor));
        }
        if (allTransparent(hn::Or(hn::Or(p[0], p[1]), hn::Or(p[2], p[3])))) {
            for (size_t i = 0; i < 4; ++i) storePixels(hn::Zero(d8), out + i * kVectorPixels);
            return;
        }
        const bool opaque = allOpaque(hn::And(hn::And(p[0], p[1]), hn::And(p[2], p[3])));
        for (size_t i = 0; i < 4; ++i) {
            storePixels(opaque ? p[i] : straight(p[i]), out + i * kVectorPixels);
        }
    }

    // floor(c x 256 / a), at most 255; transparent pixels become 0.
    static HWY_INLINE V8 straight(V8 pixels) {
        const V32 p = hn::BitCast(d32, pixels);
        const V32 alpha = hn::ShiftRight<24>(p);
        const hn::RebindToFloat<decltype(d32)> df;
        const hn::RebindToSigned<decltype(d32)> di;
        const auto divisor = hn::ConvertTo(df, hn::BitCast(di, hn::Max(alpha, hn::Set(d32, 1))));
        const auto ratio = hn::Div(hn::Set(df, 256.0f), divisor);
        const V32 low = hn::Set(d32, 255);
        const V32 r = quotient(hn::And(p, low), ratio);
        const V32 g = quotient(hn::And(hn::ShiftRight<8>(p), low), ratio);
        const V32 b = quotient(hn::And(hn::ShiftRight<16>(p), low), ratio);
        const V32 out = hn::Or(hn::Or(r, hn::ShiftLeft<8>(g)),
                               hn::Or(hn::ShiftLeft<16>(b), hn::ShiftLeft<24>(alpha)));
        return hn::BitCast(d8, hn::IfThenZeroElse(hn::Eq(alpha, hn::Zero(d32)), out));
    }

    // Below the clamp the exact quotient is at most 256, so product and sum are off by less than
    // 2^-14, and a quotient that is not whole lies 1/255 or more under the next whole number.
    // Adding 2^-10 therefore lifts whole quotients over the rounding and never passes the next.
    template <class VF>
    static HWY_INLINE V32 quotient(V32 c, VF ratio) {
        const hn::RebindToFloat<decltype(d32)> df;
        const hn::RebindToSigned<decltype(d32)> di;
        const auto product = hn::Mul(hn::ConvertTo(df, hn::BitCast(di, c)), ratio);
        const auto lifted = hn::Add(product, hn::Set(df, 0x1p-10f));
        return hn::BitCast(d32, hn::ConvertTo(di, hn::Min(lifted, hn::Set(df, 255.0f))));
    }
};

struct ClearUncovered {
    HWY_INLINE void operator()(Rgba* out, const uint8_t* mask) const {
        const V8 uncovered = hn::VecFromMask(d8, hn::Eq(hn::LoadU(d8, mask), hn::Zero(d8)));
        if (allBytesAre(uncovered, 0)) return;
        if (allBytesAre(uncovered, 255)) {
            for (size_t i = 0; i < 4; ++i) storePixels(hn::Zero(d8), out + i * kVectorPixels);
            return;
        }
        const MaskBlock block(uncovered);
        for (size_t i = 0; i < 4; ++i) {
            Rgba* p = out + i * kVectorPixels;
            const V16 factor = block.factor(i);
            const V16 whole = hn::Or(factor, hn::ShiftRight<8>(factor));
            storePixels(clearWhere(whole, loadPixels(p)), p);
        }
    }
};

void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    forEachBlock(count, MixLayers(), out, back, mask);
}

void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    forEachBlock(count, FadeAndUnpremultiply(alpha), pixels);
}

void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    forEachBlock(count, ClearUncovered(), pixels, mask);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

HWY_EXPORT(mixLayersRow);
HWY_EXPORT(fadeAndUnpremultiplyRow);
HWY_EXPORT(clearUncoveredRow);

void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    HWY_DYNAMIC_DISPATCH(mixLayersRow)(out, back, mask, count);
}
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    HWY_DYNAMIC_DISPATCH(fadeAndUnpremultiplyRow)(pixels, count, alpha);
}
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    HWY_DYNAMIC_DISPATCH(clearUncoveredRow)(pixels, mask, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
