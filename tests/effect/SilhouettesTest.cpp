// What shadows and glows are cast from, held against the definition: each cell the maximum over the
// pixels that reach it.
#include "effect/Silhouettes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "effect/GxEffect.h"
#include "effect/filters/FilterTesting.h"
#include "effect/filters/PlaneModels.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Plane;
using gxtest::Scene;

constexpr int kSide = 40;
constexpr int kInk = 12;  // extent of the letters, in the middle

Plane dilated(const Plane& plane, float radius) {
    return gxtest::dilated(plane, gxtest::Disc(radius));
}
// What `of` makes of the cells of both.
template <typename Of>
Plane combined(const Plane& a, const Plane& b, const Of& of) {
    return {kSide, kSide, 0, [&](int x, int y) { return of(a.at(x, y), b.at(x, y)); }};
}
int largerOf(int a, int b) {
    return std::max(a, b);
}
int smallerOf(int a, int b) {
    return std::min(a, b);
}
Plane inverse(const Plane& plane) {
    return combined(plane, plane, [](int a, int) { return 255 - a; });
}

struct Letters : Scene {
    explicit Letters(gxtest::Random& random) : Scene(kSide, kSide) {
        box = GxRect(14, 14, 14 + kInk, 14 + kInk);
        const bool isNoise = random.oneIn(2);
        for (int y = 14; y < 14 + kInk; ++y) {
            for (int x = 14; x < 14 + kInk; ++x) {
                const bool isInk = (x / 4 + y / 3) % 2 == 0;
                mask.data[y * kSide + x] = isNoise ? random.edgeByte() : isInk ? 255 : 0;
            }
        }
    }
    Plane plane() const {
        return {kSide, kSide, 0, [&](int x, int y) { return coverage(x - 14, y - 14); }};
    }
};

// Letters with strokes in a stack and what one effect of it sees.
struct Stack {
    Stack(Letters& letters, int style) : block(letters.param()) {
        effect.setRepeats(true);
        const GxOuterShadowProperty shadow(0, 0, 1, 0, 1);
        const GxInnerGlowProperty glow(1, 0, 1, 0, nullptr);
        id = style == GXE_STYLE_OUTER_SHADOW ? effect.addEffect(style, &shadow)
                                             : effect.addEffect(style, &glow);
    }
    bool choose(const GxSilhouette& silhouette) {
        effect.setSilhouette(id, silhouette);
        effect.initEffect(kSide, kSide);
        silhouettes =
            std::make_unique<Silhouettes>(block, GxRect(0, 0, kSide, kSide), effect.getLayers());
        return silhouettes->choose(*effect.findEffect(id), block);
    }
    Plane seen() const {
        const GxRect& text = *block.textRect;
        return {kSide, kSide, 0, [&](int x, int y) {
                    const bool isInside =
                        x >= text.left && x < text.right && y >= text.top && y < text.bottom;
                    const GxBitmap& mask = *block.src;
                    return isInside ? mask.data[(y - block.srcTop) * mask.width + x - block.srcLeft]
                                    : 0;
                }};
    }

    GxEffect effect;
    GxECore::ParamPostProcessing block;
    int id = -1;
    std::unique_ptr<Silhouettes> silhouettes;
};

TEST(Silhouettes, EqualTheirDefinition) {
    gxtest::Random random(601);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 60; ++run) {
        Letters letters(random);
        Stack outer(letters, GXE_STYLE_OUTER_SHADOW);
        Plane expected = letters.plane();
        GxSilhouette silhouette;
        silhouette.castFrom = random.between(0, 2);  // 2 is the letters, too
        silhouette.spread = static_cast<float>(random.between(0, 12)) * 0.5f;
        for (int i = random.between(0, 3); i > 0; --i) {
            const auto size = static_cast<float>(random.between(0, 6));
            const int position = random.between(0, 3);
            outer.effect.addStrokeText(size, 0, 0, 0, position);
            if (silhouette.castFrom != GxSilhouette::kOutline || position > 1) continue;
            const float radius = position == 0 ? size / 2 : size;
            const Plane spread = dilated(letters.plane(), radius);
            const Plane background = dilated(inverse(letters.plane()), radius);
            const Plane band = position == 0 ? combined(spread, background, smallerOf) : spread;
            expected = combined(expected, band, largerOf);
        }
        const auto whole = static_cast<float>(static_cast<int>(silhouette.spread));
        if (whole > 0) expected = combined(expected, dilated(expected, whole), largerOf);
        ASSERT_TRUE(outer.choose(silhouette));
        ASSERT_EQ(outer.seen().cells, expected.cells) << run << " spread " << silhouette.spread;

        Stack inner(letters, GXE_STYLE_INNER_GLOW);
        Plane choked = letters.plane();
        if (whole > 0) choked = inverse(dilated(inverse(choked), whole));
        ASSERT_TRUE(inner.choose(silhouette));
        ASSERT_EQ(inner.seen().cells, choked.cells) << run << " spread " << silhouette.spread;
    }
}

GxBitmap rendered(GxEffect& stack, int x, int y, int extent, const uint8_t* pixels) {
    const GxBitmap mask(extent, extent, pixels, 1);
    stack.setOutput(GxEffect::Output::kFreshWords);
    return gxtest::renderStack(stack, kSide, kSide, x, y, mask);
}

// The stack with a silhouette over the letters, and the plain one over the silhouette. Strokes
// without colour leave nothing but what they cast.
TEST(Silhouettes, EffectsRunAsIfTheyWereTheText) {
    gxtest::Random random(602);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 20; ++run) {
        Letters letters(random);
        Stack seen(letters, GXE_STYLE_OUTER_SHADOW);
        const auto strokeSize = static_cast<float>(random.between(1, 3));
        const GxSilhouette silhouette{GxSilhouette::kOutline,
                                      static_cast<float>(random.between(0, 2))};
        seen.effect.addStrokeText(strokeSize, 0, 0, 0, 1);
        ASSERT_TRUE(seen.choose(silhouette));
        const auto addShadows = [](GxEffect& stack, const GxSilhouette& from) {
            stack.setSilhouette(stack.addOuterShadowText(45, 4, 3, 0xFF3050C0, 0.8f), from);
            stack.setSilhouette(stack.addOuterGlowText(4, 0xFFFFC000, 0.6f, 0, nullptr), from);
        };
        GxEffect cast, plain;
        addShadows(cast, silhouette);
        cast.addStrokeText(strokeSize, 0xFF808080, 0, 0, 1);
        addShadows(plain, GxSilhouette());
        std::vector<uint8_t> ink;
        for (int i = 0; i < kInk * kInk; ++i) {
            ink.push_back(letters.mask.data[(14 + i / kInk) * kSide + 14 + i % kInk]);
        }
        const GxBitmap expected = rendered(plain, 0, 0, kSide, seen.seen().bytes().data());
        ASSERT_EQ(difference(expected, rendered(cast, 14, 14, kInk, ink.data())), "") << run;
    }
}

}  // namespace
}  // namespace GxFontEffect
