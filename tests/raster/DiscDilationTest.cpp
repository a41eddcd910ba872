// The fast dilation against its plain form, byte for byte, on every instruction set. That the plain
// form is right is shown with the stroke.
#include "raster/kernels/DiscDilation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "effect/filters/GxStroke.h"
#include "raster/SimdTest.h"
#include "support/AllocationFailure.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;
using Bytes = std::vector<uint8_t>;

enum Content { kEmpty, kFull, kNoise, kPoint, kBars, kDots, kContents };

struct Plane {
    int64_t columns;
    int64_t rows;
    int64_t stride;
    Bytes bytes;

    // Ends with the last pixel, whatever the stride: a sanitizer sees every byte too many.
    Plane(int64_t planeColumns, int64_t planeRows, int64_t gap)
        : columns(planeColumns),
          rows(planeRows),
          stride(planeColumns + gap),
          bytes(static_cast<size_t>((rows - 1) * stride + columns)) {}

    uint8_t& at(int64_t x, int64_t y) { return bytes[static_cast<size_t>(y * stride + x)]; }
};

void draw(Random& random, Content content, Plane& plane) {
    switch (content) {
        case kFull:
            std::fill(plane.bytes.begin(), plane.bytes.end(), uint8_t{255});
            return;
        case kNoise:
            plane.bytes = random.edgeBytes(plane.bytes.size());
            return;
        case kPoint:
            plane.at(random.between(0, static_cast<int>(plane.columns) - 1),
                     random.between(0, static_cast<int>(plane.rows) - 1)) = random.edgeByte();
            return;
        case kBars:
            gxtest::drawBars(random, plane.bytes.data(), plane.columns, plane.rows, plane.stride);
            return;
        case kDots:
            for (int dots = static_cast<int>(plane.bytes.size()) / 8; dots > 0; --dots) {
                plane.bytes[random.between(0, static_cast<int>(plane.bytes.size()) - 1)] =
                    random.byte();
            }
            return;
        default:
            return;
    }
}

struct Kernel {
    Bytes cells;
    int64_t side;
};

Kernel disc(float radius) {
    unsigned char* cells = nullptr;
    const int64_t side = makeCircleKernel(&cells, radius);
    Kernel kernel{Bytes(cells, cells + side * side), side};
    std::free(cells);
    return kernel;
}

// Both dilations of a mask, into an output that holds something already.
void expectPlainBytes(Random& random, Content content, int64_t columns, int64_t rows,
                      const Kernel& kernel) {
    SCOPED_TRACE(std::to_string(columns) + " x " + std::to_string(rows) + ", content " +
                 std::to_string(content) + ", kernel " + std::to_string(kernel.side));
    Plane mask(columns, rows, random.oneIn(2) ? 0 : random.between(0, 40));
    draw(random, content, mask);
    Plane out(columns + kernel.side - 1, rows + kernel.side - 1,
              random.oneIn(2) ? 0 : random.between(0, 40));
    if (random.oneIn(3)) draw(random, kBars, out);
    if (random.oneIn(5)) draw(random, kNoise, out);

    DilationBand band;
    band.mask = mask.bytes.data();
    band.maskStride = mask.stride;
    band.columns = columns;
    band.rows = rows;
    band.kernel = kernel.cells.data();
    band.kernelSize = kernel.side;
    band.outStride = out.stride;
    const auto dilated = [&](void (*dilate)(const DilationBand&)) {
        Bytes copy = out.bytes;
        band.out = copy.data();
        dilate(band);
        return copy;
    };
    // Not EXPECT_EQ: it would print planes.
    EXPECT_TRUE(dilated(dilateOutside) == dilated(plain::dilateOutside)) << "outside";
    EXPECT_TRUE(dilated(dilateInside) == dilated(plain::dilateInside)) << "inside";
}

constexpr float kRadii[] = {0,     0.3f, 0.5f,  0.7f, 1,     1.3f, 1.5f, 2,     2.4f,
                            2.6f,  3,    3.7f,  4.2f, 5,     6,    7.5f, 9.45f, 10,
                            12.8f, 15,   16.3f, 20,   22.5f, 25,   27,   30};

class DiscDilationTest : public gxtest::SimdTest {};

TEST_P(DiscDilationTest, EverySmallWidth) {
    Random random(11);
    GX_TRACE_SEED(random);
    for (int64_t columns = 1; columns <= 80; ++columns) {
        for (int content = 0; content < kContents; ++content) {
            const float radius = kRadii[random.between(0, 13)];
            expectPlainBytes(random, Content(content), columns, random.between(1, 20),
                             disc(radius));
        }
    }
}

TEST_P(DiscDilationTest, EveryRadius) {
    Random random(12);
    GX_TRACE_SEED(random);
    for (const float radius : kRadii) {
        for (int content = 0; content < kContents; ++content) {
            expectPlainBytes(random, Content(content), random.between(20, 150),
                             random.between(1, 40), disc(radius));
        }
    }
}

TEST_P(DiscDilationTest, SeveralTiles) {
    Random random(13);
    GX_TRACE_SEED(random);
    for (const float radius : {0.4f, 1.0f, 2.0f, 3.0f, 5.5f, 10.0f}) {
        expectPlainBytes(random, kNoise, random.between(509, 515), 4, disc(radius));
        expectPlainBytes(random, kBars, random.between(1000, 1100), 30, disc(radius));
    }
}

// Beyond 127 the tiles give up, beyond 254 reaches take 16 bits.
TEST_P(DiscDilationTest, WideDiscs) {
    Random random(16);
    GX_TRACE_SEED(random);
    for (const float radius : {35.0f, 36.0f, 50.7f, 63.6f, 127.4f, 128.0f, 254.3f, 255.0f}) {
        for (const Content content : {kPoint, kBars, kDots, kNoise}) {
            const int columns = random.between(1, 4000 / static_cast<int>(radius));
            expectPlainBytes(random, content, columns, random.between(1, 4), disc(radius));
        }
    }
    expectPlainBytes(random, kBars, 110, 60, disc(40.5f));
    expectPlainBytes(random, kBars, random.between(1000, 1100), 4, disc(38));
    expectPlainBytes(random, kBars, 2, random.between(1030, 1100), disc(41.2f));
    Kernel lopsided = disc(40);
    lopsided.cells[5] ^= 1;
    expectPlainBytes(random, kBars, 30, 5, lopsided);
}

TEST_P(DiscDilationTest, WideDiscsNeedNoMemory) {
    const Kernel kernel = disc(40);
    const Bytes mask(size_t{60} * 9, uint8_t{255});
    Bytes expected(size_t(60 + kernel.side - 1) * size_t(9 + kernel.side - 1));
    Bytes out = expected;
    DilationBand band = {mask.data(),         60,          60,         9,
                         kernel.cells.data(), kernel.side, out.data(), 60 + kernel.side - 1};
    {
        const gxtest::AllocationFailure failure(1);
        dilateOutside(band);
    }
    band.out = expected.data();
    plain::dilateOutside(band);
    EXPECT_TRUE(out == expected);
}

// Kernels that are no disc: anything; symmetric but stronger outside than inside; no middle.
TEST_P(DiscDilationTest, AnyKernel) {
    Random random(14);
    GX_TRACE_SEED(random);
    expectPlainBytes(random, kNoise, 50, 9, disc(2));
    for (const int64_t side : {1, 3, 4, 7}) {
        expectPlainBytes(random, kNoise, 45, 6,
                         {random.edgeBytes(static_cast<size_t>(side * side)), side});
    }
    expectPlainBytes(random, kBars, 45, 30, {{255, 0, 255, 0, 0, 0, 255, 0, 255}, 3});
    expectPlainBytes(random, kBars, 45, 30, {{9, 90, 9, 90, 0, 90, 9, 90, 9}, 3});
    expectPlainBytes(random, kBars, 45, 30, {{90, 0, 90, 90, 0, 90, 90, 0, 90}, 3});
}

TEST_P(DiscDilationTest, EmptyBandsDoNothing) {
    DilationBand band;
    dilateOutside(band);
    const Kernel kernel = disc(1);
    band.kernel = kernel.cells.data();
    band.kernelSize = kernel.side;
    band.columns = 5;
    dilateInside(band);
    band.columns = 0;
    band.rows = 5;
    dilateInside(band);
    minimum(nullptr, nullptr, 0);
}

TEST_P(DiscDilationTest, MinimumOfEveryLength) {
    Random random(15);
    GX_TRACE_SEED(random);
    for (size_t count = 1; count < 200; ++count) {
        Bytes a = random.edgeBytes(count);
        Bytes expected = a;
        const Bytes b = random.edgeBytes(count);
        minimum(a.data(), b.data(), static_cast<int64_t>(count));
        plain::minimum(expected.data(), b.data(), static_cast<int64_t>(count));
        EXPECT_EQ(a, expected);
    }
}

GX_INSTANTIATE_SIMD_TESTS(DiscDilationTest);

}  // namespace
}  // namespace GxFontEffect::kernels
