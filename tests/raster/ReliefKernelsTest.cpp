// The fast kernels of bevel and emboss against their formulas, cell by cell, on every instruction
// set. All work in heap memory of exactly the documented sizes: the address sanitizer sees a step
// past either end.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "raster/SimdTest.h"
#include "raster/kernels/BoxBlur.h"
#include "raster/kernels/ContourDistance.h"
#include "raster/kernels/ReliefHeight.h"
#include "raster/kernels/ReliefLight.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;

// A plane with the room behind it that kernels ask for.
template <typename T>
struct Plane {
    Plane(int64_t planeWidth, int64_t planeHeight, T value = 0)
        : width(planeWidth),
          height(planeHeight),
          cells(new T[static_cast<size_t>(planeWidth * planeHeight + kReliefStep)]) {
        std::fill_n(cells.get(), width * height + kReliefStep, value);
    }
    Plane(const Plane& other) : Plane(other.width, other.height) {
        std::copy_n(other.cells.get(), width * height + kReliefStep, cells.get());
    }
    T* row(int64_t y) const { return cells.get() + y * width; }

    int64_t width;
    int64_t height;
    std::unique_ptr<T[]> cells;
};

// The first cell among the first columns and rows in which two planes differ, or "".
template <typename T>
std::string difference(const Plane<T>& expected, const Plane<T>& actual, int64_t columns,
                       int64_t rows) {
    for (int64_t y = 0; y < rows; ++y) {
        for (int64_t x = 0; x < columns; ++x) {
            const int64_t e = expected.row(y)[x], a = actual.row(y)[x];
            if (e == a) continue;
            std::ostringstream text;
            text << "(" << x << ", " << y << ") is " << a << ", not " << e;
            return text.str();
        }
    }
    return "";
}

enum Content { kNoise, kFull, kEmpty, kPixels, kBars, kSteps, kContents };

template <typename T>
Plane<T> planeOf(Content content, int64_t width, int64_t height, Random& random) {
    Plane<T> plane(width, height, content == kFull ? std::numeric_limits<T>::max() : T{0});
    const auto any = [&] { return static_cast<T>(random.word() >> random.between(0, 31)); };
    if (content == kNoise) std::generate_n(plane.row(0), width * height, any);
    for (int i = random.between(1, 4); content == kPixels && i > 0; --i) {
        plane.row(random.between(0, static_cast<int>(height) - 1))[random.word() % width] = any();
    }
    if (content == kSteps) {
        const T step = any();
        for (int64_t i = 0; i < width * height; ++i) {
            plane.row(0)[i] = static_cast<T>(i % width / 5 * step);
        }
    }
    if (content == kBars) {
        std::vector<uint8_t> bars(static_cast<size_t>(width * height));
        gxtest::drawBars(random, bars.data(), width, height, width);
        std::copy(bars.begin(), bars.end(), plane.row(0));
    }
    return plane;
}

class ReliefKernels : public gxtest::SimdTest {
protected:
    std::unique_ptr<uint8_t[]> scratch(int64_t bytes) {
        std::unique_ptr<uint8_t[]> memory(new uint8_t[static_cast<size_t>(bytes)]);
        std::fill_n(memory.get(), bytes, random.byte());
        return memory;
    }
    // Calls check(content, width, height) for all contents, every small height and many widths.
    template <class Check>
    void forEachShape(const Check& check) {
        for (int content = kNoise; content < kContents; ++content) {
            for (int64_t height = 1; height <= 40; height += height < 8 ? 1 : 11) {
                for (const int64_t width : {32, 64, 160}) {
                    check(static_cast<Content>(content), width, height);
                    if (HasFatalFailure()) FAIL() << content << ": " << width << " x " << height;
                }
            }
        }
    }

    Random random{57};
};

// Distances of a mask, by the formula, with the planes that hold them.
struct Contour {
    explicit Contour(const Plane<uint8_t>& mask)
        : coverage(mask), columns(mask.width, mask.height), rows(mask.width, mask.height) {}
    ContourPlanes planes() const {
        return {coverage.width, coverage.height, coverage.row(0), columns.row(0), rows.row(0)};
    }
    Plane<uint8_t> coverage;
    Plane<int16_t> columns;
    Plane<int32_t> rows;
};

TEST_P(ReliefKernels, DistancesAlongTheAxes) {
    GX_TRACE_SEED(random);
    forEachShape([&](Content content, int64_t width, int64_t height) {
        const Contour expected(planeOf<uint8_t>(content, width, height, random));
        const Contour actual(expected.coverage);
        plain::contourDistances(expected.planes());
        contourDistances(actual.planes());
        ASSERT_EQ(difference(expected.columns, actual.columns, width, height), "");
        ASSERT_EQ(difference(expected.rows, actual.rows, width, height), "");
    });
}

TEST_P(ReliefKernels, Heights) {
    GX_TRACE_SEED(random);
    int most = 20;
    const auto check = [&](Content content, int64_t width, int64_t height) {
        const Contour contour(planeOf<uint8_t>(content, width, height, random));
        plain::contourDistances(contour.planes());
        const int pixels = random.between(most / 2, most);
        const int low = random.between(0, pixels);
        const ReliefSlope slope{-256 * low, 256 * (pixels - low)};
        const auto memory = scratch(heightScratchBytes(width, height));
        Plane<uint16_t> expected(width, height), actual(width, height);
        plain::reliefHeights(contour.planes(), slope, expected.row(0), memory.get());
        reliefHeights(contour.planes(), slope, actual.row(0), memory.get());
        ASSERT_EQ(difference(expected, actual, width - 2, height - 2), "")
            << slope.low << " to " << slope.high;
    };
    forEachShape(check);
    // Where the next point is far away.
    for (most = 60; most <= 253; most += 193) {
        for (const Content content : {kPixels, kBars}) check(content, 416, 120);
        check(kPixels, 64, 500);
    }
    most = 253;
    check(kEmpty, 64, 20);
    check(kNoise, 64, 40);
}

// The formulas against all points at once, none left out for its distance.
TEST(ReliefHeight, IsThatOfTheNearestPointOfAll) {
    Random random(58);
    GX_TRACE_SEED(random);
    for (const Content content : {kNoise, kPixels, kBars, kBars, kBars}) {
        constexpr int kWidth = 64, kHeight = 40;
        const Contour contour(planeOf<uint8_t>(content, kWidth, kHeight, random));
        plain::contourDistances(contour.planes());
        const auto at = [&](int x, int y) -> int {
            const bool isIn = x >= 0 && y >= 0 && x < kWidth && y < kHeight;
            return isIn ? contour.coverage.row(y)[x] : 0;
        };
        std::vector<std::pair<int, int>> points;  // in 1/128 pixel
        const auto addBetween = [&](int x, int y, int dx, int dy) {
            const int a = at(x, y), b = at(x + dx, y + dy);
            if ((a >= 128) == (b >= 128) || x + dx == kWidth || y + dy == kHeight) return;
            const int f = contourPointFrom(at(x - dx, y - dy), a, b, at(x + 2 * dx, y + 2 * dy));
            points.emplace_back(128 * x + f * dx, 128 * y + f * dy);
        };
        for (int i = 0; i < kWidth * kHeight; ++i) {
            addBetween(i % kWidth, i / kWidth, 1, 0);
            addBetween(i % kWidth, i / kWidth, 0, 1);
        }
        std::vector<int> distances;
        for (int i = 0; i < kWidth * kHeight; ++i) {
            int64_t nearest = 1 << 30;
            for (const auto& [x, y] : points) {
                const int64_t dx = 128 * (i % kWidth) - x, dy = 128 * (i / kWidth) - y;
                nearest = std::min(nearest, dx * dx + dy * dy);
            }
            const int d = static_cast<int>(std::sqrt(static_cast<float>(nearest)) * 2.0f + 0.5f);
            distances.push_back(at(i % kWidth, i / kWidth) >= 128 ? d : -d);
        }
        const ReliefSlope slope{-256 * random.between(0, 9), 256 * random.between(0, 9)};
        std::vector<uint8_t> memory(heightScratchBytes(kWidth, kHeight));
        const Plane<uint16_t> heights(kWidth, kHeight);
        plain::reliefHeights(contour.planes(), slope, heights.row(0), memory.data());
        for (int y = 0; y + 2 < kHeight; ++y) {
            for (int x = 0; x + 2 < kWidth; ++x) {
                int sum = 8;
                for (int i = 0; i < 9; ++i) {
                    const int weight = (i % 3 == 1 ? 2 : 1) * (i / 3 == 1 ? 2 : 1);
                    sum += weight * distances[(y + i / 3) * kWidth + x + i % 3];
                }
                const int height = std::clamp(sum >> 4, slope.low, slope.high) - slope.low;
                ASSERT_EQ(heights.row(y)[x], height) << content << " (" << x << ", " << y << ")";
            }
        }
    }
}

TEST_P(ReliefKernels, BoxMeans) {
    GX_TRACE_SEED(random);
    forEachShape([&](Content content, int64_t width, int64_t height) {
        const int64_t most = (std::min(width, height) - 1) / 2;
        const int64_t reach = random.between(0, static_cast<int>(most));
        const auto expected = planeOf<uint16_t>(content, width, height, random);
        const auto actual = expected;
        const auto memory = scratch(boxBlurScratchBytes(width, height));
        plain::boxBlur(expected.row(0), width, height, reach, memory.get());
        boxBlur(actual.row(0), width, height, reach, memory.get());
        ASSERT_EQ(difference(expected, actual, width - 2 * reach, height - 2 * reach), "")
            << "reach " << reach;
    });
}

TEST_P(ReliefKernels, Light) {
    GX_TRACE_SEED(random);
    forEachShape([&](Content content, int64_t width, int64_t height) {
        ReliefLighting light;
        light.steepness = static_cast<float>(random.between(-3000, 3000));
        light.z = static_cast<float>(random.between(0, 99)) / 100.0f;
        light.x = static_cast<float>(random.between(-70, 70)) / 100.0f;
        light.y = static_cast<float>(random.between(-70, 70)) / 100.0f;
        light.flat = kNormalHeight * light.z / fsqrt(kNormalHeight * kNormalHeight);
        light.lit = random.oneIn(2) ? 65280.0f : 16320.0f;
        light.shaded = 21760.0f;
        const auto expected = planeOf<uint16_t>(content, width, height, random);
        const auto actual = expected;
        const auto memory = scratch(lightScratchBytes(width));
        plain::reliefLight(expected.row(0), width, height, light, memory.get());
        reliefLight(actual.row(0), width, height, light, memory.get());
        ASSERT_EQ(difference(expected, actual, width - 2, height - 2), "");
    });
}

TEST_P(ReliefKernels, Masks) {
    GX_TRACE_SEED(random);
    for (int count = 1; count <= 100; ++count) {
        Plane<uint16_t> light(count, 1);
        Plane<uint8_t> coverage(count, 1);
        for (int x = 0; x < count; ++x) {
            light.row(0)[x] = static_cast<uint16_t>(
                kLevelLight + random.between(-kMostLight, kMostLight) / random.between(1, 400));
            coverage.row(0)[x] = random.edgeByte();
        }
        for (const ReliefPart part :
             {ReliefPart::kAll, ReliefPart::kCovered, ReliefPart::kNotFull}) {
            const Plane<uint8_t> lit(count, 1), shaded(count, 1), itsLit(count, 1),
                itsShaded(count, 1);
            plain::reliefMasks(light.row(0), coverage.row(0), count, part, lit.row(0),
                               shaded.row(0));
            reliefMasks(light.row(0), coverage.row(0), count, part, itsLit.row(0),
                        itsShaded.row(0));
            ASSERT_EQ(difference(lit, itsLit, count, 1), "") << count;
            ASSERT_EQ(difference(shaded, itsShaded, count, 1), "") << count;
        }
    }
}

GX_INSTANTIATE_SIMD_TESTS(ReliefKernels);

}  // namespace
}  // namespace GxFontEffect::kernels
