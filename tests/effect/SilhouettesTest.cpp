// What shadows and glows are cast from, held against the definition: each cell the maximum over the
// pixels that reach it.
#include "effect/Silhouettes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "effect/GxEffect.h"
#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxStroke.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Scene;

constexpr int kSide = 40;
constexpr int kInk = 12;  // extent of the letters, in the middle

using Plane = std::vector<int>;  // kSide x kSide

Plane dilated(const Plane& plane, float radius) {
    unsigned char* cells = nullptr;
    const int size = makeCircleKernel(&cells, radius);
    const int half = size / 2;
    Plane result(plane.size());
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            for (int i = 0; i < size * size; ++i) {
                const int fromX = x + i % size - half, fromY = y + i / size - half;
                const bool isInside = fromX >= 0 && fromY >= 0 && fromX < kSide && fromY < kSide;
                const int m = isInside ? plane[fromY * kSide + fromX] : 0;
                int& cell = result[y * kSide + x];
                cell = std::max(cell, m == 0 ? 0 : m + cells[i] - 255);
            }
        }
    }
    std::free(cells);
    return result;
}

Plane combined(const Plane& a, const Plane& b, const std::function<int(int, int)>& of) {
    Plane result;
    for (size_t i = 0; i < a.size(); ++i) result.push_back(of(a[i], b[i]));
    return result;
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
    Plane plane() const { return {mask.data, mask.data + kSide * kSide}; }
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
        Plane plane(kSide * kSide);
        const GxRect& box = *block.textRect;
        for (int y = box.top; y < box.bottom; ++y) {
            for (int x = box.left; x < box.right; ++x) {
                plane[y * kSide + x] =
                    block.src->data[(y - block.srcTop) * block.src->width + x - block.srcLeft];
            }
        }
        return plane;
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
        ASSERT_EQ(outer.seen(), expected) << run << " spread " << silhouette.spread;

        Stack inner(letters, GXE_STYLE_INNER_GLOW);
        Plane choked = letters.plane();
        if (whole > 0) choked = inverse(dilated(inverse(choked), whole));
        ASSERT_TRUE(inner.choose(silhouette));
        ASSERT_EQ(inner.seen(), choked) << run << " spread " << silhouette.spread;
    }
}

GxBitmap rendered(GxEffect& stack, int x, int y, int extent, const uint8_t* mask) {
    GxBitmap output(kSide, kSide, 4);
    std::vector<uint8_t> pixels(mask, mask + extent * extent);
    GxGlyph glyph;
    glyph.pixels = pixels.data();
    glyph.width = glyph.height = static_cast<uint16_t>(extent);
    stack.setOutput(GxEffect::Output::kFreshWords);
    stack.initEffect(kSide, kSide);
    stack.setTextBox(GxRect(x, y, x + extent, y + extent));
    stack.setDstBitmap(&output);
    stack.renderEffectLayer(x, y, &glyph);
    stack.doEffectPostProcessing();
    stack.compositeLayers(&output);
    return output;
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
        const Plane plane = seen.seen();
        const std::vector<uint8_t> shape(plane.begin(), plane.end());
        const GxBitmap expected = rendered(plain, 0, 0, kSide, shape.data());
        ASSERT_EQ(difference(expected, rendered(cast, 14, 14, kInk, ink.data())), "") << run;
    }
}

}  // namespace
}  // namespace GxFontEffect
