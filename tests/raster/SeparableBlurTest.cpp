// The fast blur against its formula, byte for byte, on every instruction set.
#include "raster/kernels/SeparableBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "raster/SimdTest.h"
#include "raster/kernels/Reciprocal.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;

// Heap memory of exactly so many bytes: the address sanitizer sees a step past either end.
struct Plane {
    Plane(int64_t planeWidth, int64_t planeHeight, uint8_t value = 0)
        : width(planeWidth), height(planeHeight), cells(new uint8_t[size()]) {
        std::fill_n(cells.get(), size(), value);
    }
    size_t size() const { return static_cast<size_t>(width * height); }

    int64_t width;
    int64_t height;
    std::unique_ptr<uint8_t[]> cells;
};

// A bell from `centre` down to its hundredth at the radius.
struct Bell {
    Bell(int32_t radius, int32_t centre) {
        for (int32_t i = 0; i <= radius; ++i) {
            const double share = i ? static_cast<double>(i) / radius : 0;
            const double weight = centre * std::pow(100.0, -share * share);
            taps.push_back(static_cast<int32_t>(std::lround(weight)));
            weights.sum += (i ? 2 : 1) * taps.back();
        }
        weights.taps = taps.data();
        weights.radius = radius;
    }
    std::vector<int32_t> taps;
    BlurWeights weights;
};

using Content = std::function<void(Plane&, Random&)>;

void fillText(Plane& plane, Random& random) {
    gxtest::drawBars(random, plane.cells.get(), plane.width, plane.height, plane.width);
}

void fillNoise(Plane& plane, Random& random) {
    std::generate_n(plane.cells.get(), plane.size(), [&] { return random.edgeByte(); });
}

void fillFull(Plane& plane, Random& /*random*/) {
    std::fill_n(plane.cells.get(), plane.size(), uint8_t{255});
}

void fillPixel(Plane& plane, Random& random) {
    plane.cells[random.word() % plane.size()] = random.edgeByte();
}

// Every second cell alike, in either direction: two by two they do not change.
void fillStripes(Plane& plane, Random& random) {
    const uint8_t values[] = {random.byte(), random.byte()};
    const int64_t step = random.oneIn(2) ? 1 : plane.width;
    for (int64_t i = 0; i < plane.width * plane.height; ++i) {
        plane.cells[static_cast<size_t>(i)] = values[i / step % plane.width % 2];
    }
}

void fillNothing(Plane& /*plane*/, Random& /*random*/) {}

const std::vector<Content>& contents() {
    static const std::vector<Content> all = {fillText,  fillNoise,   fillFull,
                                             fillPixel, fillStripes, fillNothing};
    return all;
}

class SeparableBlur : public gxtest::SimdTest {
protected:
    void expectEqual(const Plane& expected, const Plane& actual, const Bell& bell) {
        ASSERT_EQ(
            gxtest::firstDifference(expected.cells.get(), actual.cells.get(), expected.size()), "")
            << expected.width << " x " << expected.height << ", radius " << bell.weights.radius
            << ", centre " << bell.taps[0];
    }

    // The single passes, into a plane with cells around them that must stay.
    void checkPasses(int64_t columns, int64_t rows, const Bell& bell, BlurInput input,
                     const Content& fill) {
        const int64_t reach = 2 * int64_t{bell.weights.radius};
        for (const bool alongRows : {true, false}) {
            Plane in(columns + (alongRows ? reach : 0), rows + (alongRows ? 0 : reach));
            fill(in, random);
            Plane expected(columns + 3, rows, 77), actual(columns + 3, rows, 77);
            Plane scratch(blurScratchBytes(in.width, in.height, bell.weights.radius), 1,
                          random.byte());
            BlurPass pass{in.cells.get(), in.width, expected.cells.get() + 1,
                          expected.width, columns,  rows};
            (alongRows ? plain::blurRows : plain::blurColumns)(pass, bell.weights, input);
            pass.out = actual.cells.get() + 1;
            (alongRows ? blurRows : blurColumns)(pass, bell.weights, input, scratch.cells.get());
            expectEqual(expected, actual, bell);
            if (HasFatalFailure()) return;
        }
    }

    // Columns onto their own first rows.
    void checkInPlace(int64_t columns, int64_t rows, const Bell& bell, BlurInput input,
                      const Content& fill) {
        Plane plane(columns, rows + 2 * int64_t{bell.weights.radius});
        fill(plane, random);
        Plane expected(columns, plane.height);
        std::copy_n(plane.cells.get(), plane.size(), expected.cells.get());
        Plane scratch(blurScratchBytes(columns, plane.height, bell.weights.radius), 1);
        BlurPass pass{plane.cells.get(), columns, expected.cells.get(), columns, columns, rows};
        plain::blurColumns(pass, bell.weights, input);
        pass.out = plane.cells.get();
        blurColumns(pass, bell.weights, input, scratch.cells.get());
        expectEqual(expected, plane, bell);
    }

    void checkPlane(int64_t width, int64_t height, const Bell& bell, BlurInput input,
                    const Content& fill) {
        Plane in(width, height);
        fill(in, random);
        Plane expected(width, height, 77), actual(width, height, 78);
        Plane scratch(blurScratchBytes(width, height, bell.weights.radius), 1, random.byte());
        plain::blurPlane(in.cells.get(), expected.cells.get(), width, height, bell.weights, input,
                         scratch.cells.get());
        blurPlane(in.cells.get(), actual.cells.get(), width, height, bell.weights, input,
                  scratch.cells.get());
        expectEqual(expected, actual, bell);
    }

    // A plane within blank paper, in place.
    void checkPadded(int64_t width, int64_t height, const Bell& bell, const Content& fill) {
        const int64_t padding = 2 * int64_t{bell.weights.radius};
        Plane inner(width, height);
        fill(inner, random);
        Plane expected(width + 2 * padding, height + 2 * padding);
        for (int64_t y = 0; y < height; ++y) {
            std::copy_n(inner.cells.get() + y * width, width,
                        expected.cells.get() + (y + padding) * expected.width + padding);
        }
        Plane actual(expected.width, expected.height);
        std::copy_n(expected.cells.get(), expected.size(), actual.cells.get());
        Plane scratch(blurScratchBytes(actual.width, actual.height, bell.weights.radius), 1);
        plain::blurPaddedPlane(expected.cells.get(), expected.width, expected.height, bell.weights);
        blurPaddedPlane(actual.cells.get(), actual.width, actual.height, bell.weights,
                        scratch.cells.get());
        // Only the means matter.
        for (Plane* plane : {&expected, &actual}) {
            for (int64_t i = 0; i < plane->width * plane->height; ++i) {
                const bool isMean = i % plane->width < plane->width - padding &&
                                    i / plane->width < plane->height - padding;
                if (!isMean) plane->cells[static_cast<size_t>(i)] = 0;
            }
        }
        expectEqual(expected, actual, bell);
    }

    BlurInput someInput() { return random.oneIn(2) ? BlurInput::kDirect : BlurInput::kInverse; }
    int32_t someCentre() { return random.oneIn(2) ? 100 : 128; }
    const Content& someContent() { return contents()[random.word() % contents().size()]; }

    Random random{31};
};

TEST_P(SeparableBlur, EqualsTheFormulaAtEverySmallSize) {
    GX_TRACE_SEED(random);
    for (int64_t columns = 1; columns <= 70; ++columns) {
        for (int64_t rows = 1; rows <= 70; rows += 1 + columns % 3) {
            const Bell bell(random.between(1, 6), someCentre());
            checkPasses(columns, rows, bell, someInput(), someContent());
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(SeparableBlur, EqualsTheFormulaAtEveryRadius) {
    GX_TRACE_SEED(random);
    for (int32_t radius = 0; radius <= 120; ++radius) {
        for (const int32_t centre : {100, 128}) {
            const Bell bell(radius, centre);
            for (const BlurInput input : {BlurInput::kDirect, BlurInput::kInverse}) {
                const auto columns = random.between(1, 75), rows = random.between(1, 75);
                checkPasses(columns, rows, bell, input, fillNoise);
                checkPasses(columns, rows, bell, input, someContent());
                const auto width = 2 * radius + random.between(0, 40);
                const auto height = 2 * radius + random.between(0, 40);
                if (width > 0 && height > 0) {
                    checkPlane(width, height, bell, input, fillText);
                    checkPlane(width, height, bell, input, someContent());
                }
                if (HasFatalFailure()) return;
                if (radius > 12 && radius % 20 != 0) continue;
                checkPadded(random.between(1, 70), random.between(1, 35) * 2, bell, someContent());
                checkInPlace(random.between(1, 3) * kBlurStripWidth, random.between(1, 30) * 2,
                             bell, input, someContent());
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(SeparableBlur, EqualsTheFormulaOnEveryContent) {
    GX_TRACE_SEED(random);
    for (const Content& content : contents()) {
        for (const int32_t radius : {1, 2, 3, 5, 8, 25, 45}) {
            for (const BlurInput input : {BlurInput::kDirect, BlurInput::kInverse}) {
                checkPlane(300, 170, Bell(radius, someCentre()), input, content);
                checkPlane(100, 301, Bell(radius, someCentre()), input, content);
                if (HasFatalFailure()) return;
            }
        }
    }
}

// Past the sums for which single precision alone gives the quotient.
TEST_P(SeparableBlur, DividesByLargeSums) {
    GX_TRACE_SEED(random);
    for (const int32_t radius : {154, 155, 156, 197, 198, 199, 200, 700, 5000}) {
        for (const int32_t centre : {100, 128}) {
            const Bell bell(radius, centre);
            checkPasses(7, 3, bell, BlurInput::kDirect, fillFull);
            checkPasses(7, 3, bell, BlurInput::kInverse, fillNothing);
            checkPasses(40, 5, bell, someInput(), fillNoise);
            checkPasses(40, 5, bell, someInput(), fillText);
            if (HasFatalFailure()) return;
        }
    }
}

// Weights at the edges of what each form takes: rising outwards, above 128, a step of 128, two
// neighbours above 255, odd and small sums, no 16 bits for the sum.
TEST_P(SeparableBlur, TakesAnyWeights) {
    for (const std::vector<int32_t>& taps :
         std::vector<std::vector<int32_t>>{{1, 2, 3},
                                           {1000, 10},
                                           {128, 0},
                                           {129, 60},
                                           {5, -1},
                                           {127, 0},
                                           {3, 1},
                                           {2, 1},
                                           {1, 0},
                                           {100, 78},
                                           {128, 128, 0, 0},
                                           {128, 127, 1, 0},
                                           {100, 100, 28, 0},
                                           {128, 64, 64, 63, 0, 0},
                                           {126, 126, 65, 0, 0},
                                           {128, 128, 128, 128, 128, 128, 50}}) {
        Bell bell(1, 100);
        bell.taps = taps;
        bell.weights.taps = bell.taps.data();
        bell.weights.radius = static_cast<int32_t>(taps.size()) - 1;
        bell.weights.sum = taps[0];
        for (size_t i = 1; i < taps.size(); ++i) bell.weights.sum += 2 * std::max(taps[i], 0);
        const Content& content = taps.back() < 0 ? fillNothing : fillNoise;
        checkPasses(50, 7, bell, BlurInput::kDirect, content);
        checkPasses(50, 7, bell, BlurInput::kInverse, content);
        checkPlane(50, 40, bell, BlurInput::kInverse, content);
    }
    checkPasses(50, 7, Bell(2, 100), BlurInput::kDirect, fillNoise);
}

TEST_P(SeparableBlur, TakesEmptyAreas) {
    const Bell bell(3, 100);
    Plane cells(6, 6, 9), scratch(blurScratchBytes(6, 6, 3), 1);
    for (const int64_t extent : {int64_t{0}, int64_t{-4}}) {
        const BlurPass narrow{cells.cells.get(), 6, cells.cells.get(), 6, extent, 6};
        const BlurPass low{cells.cells.get(), 6, cells.cells.get(), 6, 6, extent};
        for (const BlurPass& pass : {narrow, low}) {
            blurRows(pass, bell.weights, BlurInput::kInverse, scratch.cells.get());
            blurColumns(pass, bell.weights, BlurInput::kInverse, scratch.cells.get());
        }
    }
    EXPECT_EQ(std::count(cells.cells.get(), cells.cells.get() + 36, 9), 36);
}

GX_INSTANTIATE_SIMD_TESTS(SeparableBlur);

// The quotient changes at the multiples of the divisor only.
TEST(Reciprocal, DividesEvery16BitNumber) {
    for (uint32_t divisor = 2; divisor <= 65535; ++divisor) {
        const Reciprocal reciprocal(divisor);
        for (uint32_t multiple = 0; multiple <= 65534; multiple += divisor) {
            const uint32_t last = std::min(multiple + divisor - 1, 65534u);
            for (const uint32_t a : {multiple, last}) {
                const uint32_t quotient =
                    (a + reciprocal.lift) * uint32_t{reciprocal.factor} >> (16 + reciprocal.shift);
                ASSERT_EQ(quotient, a / divisor) << a << " / " << divisor;
            }
        }
    }
}

}  // namespace
}  // namespace GxFontEffect::kernels
