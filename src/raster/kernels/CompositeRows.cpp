// The whole-image steps of raster/kernels/BlendRows.h.
#include "raster/kernels/BlendRows.h"
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
using plain::fadeIntoWordsRow;
using plain::mixLayersRow;

#else

// Weighs the back layer, so that it is left out where the mask is full.
struct MixLayers {
    HWY_INLINE V8 weights(V8 mask) const { return hn::Not(mask); }
    HWY_INLINE V8 operator()(V8 d, V16 factor, V8 back) const {
        return hn::SaturatedAdd(join(scale(split(back), factor)),
                                join(scale(split(d), inverse(factor))));
    }
    HWY_INLINE V8 full(V8 back) const { return back; }
};

constexpr PixelShuffle kSwapRedBlue(2, 1, 0, 3);

template <bool intoWords>
struct FadeAndUnpremultiply {
    V16 factor;
    bool fades;

    explicit HWY_INLINE FadeAndUnpremultiply(uint32_t alpha)
        : factor(hn::Set(d16, static_cast<uint16_t>(alpha << 8))), fades(alpha != 255) {}

    HWY_INLINE bool isIdle(const Rgba* out) const {
        const bool isBlank = allBytesAre(anyBits(out), 0);
        return isBlank | (!intoWords & isStraight(out));
    }
    HWY_INLINE bool isStraight(const Rgba* out) const {
        const bool isOpaque = allOpaque(commonBits(out));
        return !fades & isOpaque;
    }
    HWY_INLINE void operator()(Rgba* out) const {
        if (intoWords && isStraight(out)) {
            for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
                storePixels(kSwapRedBlue(loadPixels(out + x)), out + x);
            }
            return;
        }
        for (size_t x = 0; x < kBlockPixels; x += kVectorPixels) {
            Rgba* p = out + x;
            storePixels(straight(join(scale(split(loadPixels(p)), factor))), p);
        }
    }

    // floor(c x 256 / a), at most 255; transparent pixels become 0.
    static HWY_INLINE V8 straight(V8 pixels) {
        const V32 p = hn::BitCast(d32, pixels);
        const V32 alpha = hn::ShiftRight<24>(p);
        const Numbers divisor =
            hn::ConvertTo(dNumber, hn::BitCast(dWhole, hn::Max(alpha, hn::Set(d32, 1))));
        const Numbers ratio = hn::Div(hn::Set(dNumber, 256.0f), divisor);
        const V32 low = hn::Set(d32, 255);
        const V32 r = quotient(hn::And(p, low), ratio);
        const V32 g = quotient(hn::And(hn::ShiftRight<8>(p), low), ratio);
        const V32 b = quotient(hn::And(hn::ShiftRight<16>(p), low), ratio);
        const V32 first = intoWords ? b : r;
        const V32 third = intoWords ? r : b;
        const V32 out = hn::Or(hn::Or(first, hn::ShiftLeft<8>(g)),
                               hn::Or(hn::ShiftLeft<16>(third), hn::ShiftLeft<24>(alpha)));
        return hn::BitCast(d8, hn::IfThenZeroElse(hn::Eq(alpha, hn::Zero(d32)), out));
    }

    // Below the clamp the exact quotient is at most 256, so product and sum are off by less than
    // 2^-12, also with the ratio of 32-bit ARM, which is an approximation, and a quotient that is
    // not whole lies 1/255 or more under the next whole number. Adding 2^-10 therefore lifts whole
    // quotients over the rounding and never passes the next.
    static HWY_INLINE V32 quotient(V32 c, Numbers ratio) {
        const Numbers product = hn::Mul(hn::ConvertTo(dNumber, hn::BitCast(dWhole, c)), ratio);
        const Numbers lifted = hn::Add(product, hn::Set(dNumber, 0x1p-10f));
        return hn::BitCast(d32, truncated(hn::Min(lifted, hn::Set(dNumber, 255.0f))));
    }
};

struct ClearUncovered {
    HWY_INLINE V8 weights(V8 mask) const { return hn::VecFromMask(d8, hn::Eq(mask, hn::Zero(d8))); }
    HWY_INLINE V8 operator()(V8 d, V16 factor) const {
        return clearWhere(hn::Or(factor, hn::ShiftRight<8>(factor)), d);
    }
    HWY_INLINE V8 full() const { return hn::Zero(d8); }
};

void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    blendRow(count, MixLayers(), out, mask, back);
}

void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    forEachBlock(count, FadeAndUnpremultiply<false>(alpha), pixels);
}

void fadeIntoWordsRow(Rgba* pixels, size_t count, uint32_t alpha) {
    forEachBlock(count, FadeAndUnpremultiply<true>(alpha), pixels);
}

void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    blendRow(count, ClearUncovered(), pixels, mask);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(mixLayersRow);
GX_EXPORT(fadeAndUnpremultiplyRow);
GX_EXPORT(fadeIntoWordsRow);
GX_EXPORT(clearUncoveredRow);

void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    GX_DISPATCH(mixLayersRow)(out, back, mask, count);
}
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    GX_DISPATCH(fadeAndUnpremultiplyRow)(pixels, count, alpha);
}
void fadeIntoWordsRow(Rgba* pixels, size_t count, uint32_t alpha) {
    GX_DISPATCH(fadeIntoWordsRow)(pixels, count, alpha);
}
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    GX_DISPATCH(clearUncoveredRow)(pixels, mask, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
