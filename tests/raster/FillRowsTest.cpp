// The fast gradients and patterns against their formulas, byte for byte, on every instruction set.
// That the formulas are right is shown in the tests of the filters.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "raster/SimdTest.h"
#include "raster/kernels/GradientRows.h"
#include "raster/kernels/PatternRows.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;

// Heap memory of exactly so many elements: the address sanitizer sees a step past either end.
template <typename T>
std::unique_ptr<T[]> exactly(size_t count) {
    return std::make_unique<T[]>(count);
}

class FillRows : public gxtest::SimdTest {
protected:
    using Draw = std::function<void(const BlendArea&)>;

    // Runs both forms through one mask over the same layer.
    void check(size_t width, size_t height, const Draw& fast, const Draw& plain) {
        const auto mask = exactly<uint8_t>(width * height);
        const auto expected = exactly<uint8_t>(width * height * 4);
        const auto actual = exactly<uint8_t>(width * height * 4);
        fillMask(mask.get(), width * height);
        for (size_t i = 0; i < width * height * 4; ++i) {
            expected[i] = actual[i] = i % 4 == 3 && random.oneIn(2) ? 0 : random.edgeByte();
        }
        const auto stride = static_cast<ptrdiff_t>(width);
        BlendArea area{expected.get(), stride * 4, mask.get(), stride, width, height};
        plain(area);
        area.destination = actual.get();
        fast(area);
        ASSERT_EQ(gxtest::firstDifference(expected.get(), actual.get(), width * height * 4), "")
            << width << " x " << height;
    }

    // Noise, or stretches of nothing and of anything.
    void fillMask(uint8_t* mask, size_t count) {
        const int longest = random.oneIn(3) ? 1 : 90;
        for (size_t i = 0; i < count;) {
            const auto end = std::min(count, i + static_cast<size_t>(random.between(1, longest)));
            const bool isEmpty = random.oneIn(3);
            for (; i < end; ++i) mask[i] = isEmpty ? 0 : random.edgeByte();
        }
    }

    // Opaque colours and others.
    std::vector<uint32_t> someColors(size_t count) {
        std::vector<uint32_t> colors(count);
        for (uint32_t& c : colors) c = random.word() | (random.oneIn(2) ? 0xFF000000u : 0);
        if (random.oneIn(2)) colors[random.word() % count] = 0;
        return colors;
    }

    Random random{51};
};

// --- gradients ---

class GradientRows : public FillRows {
protected:
    struct Steps {
        float x, y;
    };

    void checkGradients(size_t width, size_t height, Steps steps) {
        const std::vector<uint32_t> table = someColors(256);
        const auto columns = exactly<float>(width);
        GradientFill fill;
        fill.table = table.data();
        fill.columns = columns.get();
        fill.firstColumn = random.oneIn(2) ? 0 : random.between(0, 50);
        fill.firstRow = random.oneIn(2) ? 0 : random.between(0, 50);
        const auto half = [&](int64_t first, size_t extent) {
            return static_cast<float>(first + static_cast<int64_t>(extent)) * 0.5f;
        };
        fill.centreX = centre != 0 ? centre : half(fill.firstColumn, width);
        fill.centreY = centre != 0 ? 0 : half(fill.firstRow, height);
        SCOPED_TRACE("steps " + std::to_string(steps.x) + ", " + std::to_string(steps.y));
        const auto on = [&](const BlendArea& area) {
            GradientFill placed = fill;
            placed.area = area;
            return placed;
        };
        check(
            width, height,
            [&](const BlendArea& area) { linearGradientRows(on(area), steps.x, steps.y); },
            [&](const BlendArea& area) { plain::linearGradientRows(on(area), steps.x, steps.y); });
        check(
            width, height, [&](const BlendArea& area) { radialGradientRows(on(area), steps.x); },
            [&](const BlendArea& area) { plain::radialGradientRows(on(area), steps.x); });
    }

    // Shallow, steep, and between.
    float someStep() {
        const int extent = random.oneIn(3) ? 9 : 2;
        const float step = static_cast<float>(random.between(-1000 * extent, 1000 * extent));
        return step * 0.001f;
    }

    float centre = 0;  // if not 0: of the columns, and 0 of the rows
};

TEST_P(GradientRows, EqualTheFormulaAtEveryWidth) {
    GX_TRACE_SEED(random);
    for (size_t width = 1; width <= 200; ++width) {
        for (int i = 0; i < 5; ++i) {
            const auto height = static_cast<size_t>(random.between(1, 9));
            checkGradients(width, height, {someStep(), someStep()});
            if (HasFatalFailure()) return;
        }
    }
    checkGradients(1100, 40, {0.2f, -0.1f});
    checkGradients(600, 40, {-0.85f, 0});
}

TEST_P(GradientRows, TakeAnySteps) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    const float odd[] = {0,  -0.0f, 0.9f,   -0.9f, 1,         1e-30f,
                         40, 1e10f, -1e19f, 3e38f, kInfinity, kNaN};
    for (const float x : odd) {
        for (const float y : odd) {
            checkGradients(70, 5, {x, y});
            if (HasFatalFailure()) return;
        }
    }
    // The square of what lies between column 0 and the centre is a subnormal number.
    centre = 1.08e-19f;
    for (const float step : {1.0f, 1e14f, 1e19f, 9.9e19f}) {
        for (int i = 0; i < 8; ++i) {
            checkGradients(9, 1, {step, 0});
            if (HasFatalFailure()) return;
        }
    }
    linearGradientRows({}, 1, 1);
    radialGradientRows({}, 1);
}

GX_INSTANTIATE_SIMD_TESTS(GradientRows);

// --- patterns ---

class PatternRows : public FillRows {
protected:
    void checkPattern(size_t width, size_t height, int64_t pictureWidth, int64_t pictureHeight,
                      float scale, float opacity) {
        const auto texels = static_cast<size_t>(pictureWidth * pictureHeight);
        const std::vector<uint32_t> colors = someColors(texels);
        const auto picture = exactly<uint32_t>(texels);
        std::copy(colors.begin(), colors.end(), picture.get());
        const auto row = exactly<Rgba>(width);
        const auto columns = exactly<PatternColumn>(width);
        const auto covered = exactly<uint8_t>(width + 8);
        const auto mixed = exactly<float>(static_cast<size_t>(pictureWidth + 1) * 4);

        PatternFill fill;
        fill.firstColumn = random.oneIn(2) ? 0 : random.between(0, 50);
        fill.firstRow = random.oneIn(2) ? 0 : random.between(0, 50);
        fill.tile = {reinterpret_cast<const uint8_t*>(picture.get()),
                     pictureWidth,
                     pictureHeight,
                     scale,
                     opacity,
                     static_cast<int32_t>(scale * static_cast<float>(pictureWidth)),
                     static_cast<int32_t>(scale * static_cast<float>(pictureHeight))};
        fill.memory = {row.get(), columns.get(), covered.get(), mixed.get()};
        SCOPED_TRACE("picture " + std::to_string(pictureWidth) + " x " +
                     std::to_string(pictureHeight) + ", scale " + std::to_string(scale) +
                     ", opacity " + std::to_string(opacity));
        const auto on = [&](const BlendArea& area) {
            PatternFill placed = fill;
            placed.area = area;
            return placed;
        };
        check(
            width, height, [&](const BlendArea& area) { patternRows(on(area)); },
            [&](const BlendArea& area) { plain::patternRows(on(area)); });
    }

    float someScale() {
        return static_cast<float>(random.oneIn(2) ? random.between(10, 100)
                                                  : random.between(100, 1000)) *
               0.01f;
    }
};

TEST_P(PatternRows, EqualTheFormulaAtEveryWidth) {
    GX_TRACE_SEED(random);
    for (size_t width = 1; width <= 200; ++width) {
        for (int i = 0; i < 4; ++i) {
            const int largest = random.oneIn(2) ? 5 : 40;
            checkPattern(width, static_cast<size_t>(random.between(1, 12)),
                         random.between(1, largest), random.between(1, largest), someScale(),
                         static_cast<float>(random.between(0, 100)) * 0.01f);
            if (HasFatalFailure()) return;
        }
    }
    checkPattern(700, 60, 33, 20, 1.5f, 1);
    checkPattern(300, 20, 500, 100, 0.3f, 1);
}

TEST_P(PatternRows, TakeAnyOpacity) {
    for (const float opacity :
         {-1.0f, 2.0f, 1e30f, std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        checkPattern(40, 5, 7, 3, 1.3f, opacity);
    }
    patternRows({});
}

GX_INSTANTIATE_SIMD_TESTS(PatternRows);

}  // namespace
}  // namespace GxFontEffect::kernels
