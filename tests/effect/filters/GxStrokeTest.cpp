#include "effect/filters/GxStroke.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Scene;

struct Kernel {
    explicit Kernel(float radius) { size = makeCircleKernel(&cells, radius); }
    Kernel(const Kernel&) = delete;
    Kernel& operator=(const Kernel&) = delete;
    ~Kernel() { std::free(cells); }
    int at(int64_t y, int64_t x) const { return cells[y * size + x]; }

    unsigned char* cells = nullptr;
    int size;
};

TEST(CircleKernel, SizesAndCells) {
    struct Case {
        float radius;
        int size;
        int centre, next, rim;  // (R, R), (R, R + 1), (R, 2R); -1: no such cell
    };
    const Case cases[] = {
        {0.0f, 1, 0, -1, -1},     {0.3f, 1, 77, -1, -1},     // 0.3 x 255 + 0.5 = 77.0
        {0.5f, 3, 128, 128, 128},                            // centre 0.5; distance 1: 0.5 - 1 + 1
        {1.0f, 3, 255, 255, 255}, {1.5f, 5, 255, 255, 128},  // distance 2: 0.5
        {2.0f, 5, 255, 255, 255}, {-1.0f, 1, 0, -1, -1},
    };
    for (const Case& c : cases) {
        const Kernel kernel(c.radius);
        ASSERT_EQ(kernel.size, c.size) << c.radius;
        const int r = c.size / 2;
        EXPECT_EQ(kernel.at(r, r), c.centre) << c.radius;
        if (c.next >= 0) {
            EXPECT_EQ(kernel.at(r, r + 1), c.next) << c.radius;
            EXPECT_EQ(kernel.at(r, c.size - 1), c.rim) << c.radius;
            EXPECT_EQ(kernel.at(0, r), c.rim) << c.radius;
        }
    }
    // Corner of the 5 x 5 disc of radius 2: 2 - sqrt(8) + 1 = 0.17157, x 255 + 0.5 = 44.25.
    EXPECT_EQ(Kernel(2.0f).at(0, 0), 44);
}

TEST(CircleKernel, RefusesWhatHasNoCellsOrDoesNotFit) {
    EXPECT_EQ(makeCircleKernel(nullptr, 3.0f), 7);
    for (const auto& [radius, size] :
         {std::pair{-1.5f, -1}, {-9.0f, -15}, {30000.0f, 60001}, {gxtest::kInfinity, INT32_MAX}}) {
        const Kernel kernel(radius);
        EXPECT_EQ(kernel.size, size);
        EXPECT_EQ(kernel.cells, nullptr);
    }
    const Kernel undefined(gxtest::kNaN);
    ASSERT_EQ(undefined.size, 1);
    EXPECT_EQ(undefined.at(0, 0), 0);
}

TEST(GxStroke, Margins) {
    struct Case {
        float size;
        int centre, outside;
    };
    for (const Case& c : std::vector<Case>{{0, 0, 0},
                                           {3, 2, 3},
                                           {2.4f, 1, 2},
                                           {2.5f, 1, 3},
                                           {-3, -1, -2},
                                           {1e30f, INT32_MAX, INT32_MAX}}) {
        for (int position : {0, 1, 2, 5, -1}) {
            GxStroke core;
            const GxStrokeProperty record(c.size, 0, 1, 0, position);
            core.setProperty(&record);
            const int expected = position == 0 ? c.centre : position == 1 ? c.outside : 0;
            EXPECT_EQ(core.getOffset(), expected) << c.size << " " << position;
            EXPECT_EQ(core.getTopOffset(), expected);
        }
    }
}

void paint(Scene& scene, float size, uint32_t color, int position, uint32_t mode = 0,
           bool both = false) {
    const GxStrokeProperty record(size, color, 0.1f, 9, position);
    gxtest::paintWith<GxStroke>(scene, record, mode, both);
}

// The band from its definition: each output cell is the maximum over the pixels that reach it.
std::vector<int> modelPlane(const Scene& scene, const Kernel& kernel, bool inverse, int64_t width,
                            int64_t height) {
    const int64_t half = kernel.size / 2;
    std::vector<int> plane(width * height);
    for (int64_t y = 0; y < height; ++y) {
        for (int64_t x = 0; x < width; ++x) {
            int best = 0;
            for (int64_t ky = 0; ky < kernel.size; ++ky) {
                for (int64_t kx = 0; kx < kernel.size; ++kx) {
                    // The mask cell (framed by a pixel) whose kernel cell (ky, kx) lies here.
                    const int64_t my = y - ky, mx = x - kx;
                    if (my < 0 || mx < 0 || my >= height - 2 * half || mx >= width - 2 * half) {
                        continue;
                    }
                    const int m = scene.coverageInBox(mx - 1, my - 1);
                    best = std::max(best, (inverse ? 255 - m : m) + kernel.at(ky, kx) - 255);
                }
            }
            plane[y * width + x] = best;
        }
    }
    return plane;
}

GxBitmap model(const Scene& scene, const GxBitmap& before, float size, uint32_t color, int position,
               uint32_t mode) {
    GxBitmap layer(before);
    const Kernel kernel(position == 0 ? size * 0.5f : size);
    const int half = kernel.size / 2;
    const int width = scene.box.right - scene.box.left + 2 + 2 * half;
    const int height = scene.box.bottom - scene.box.top + 2 + 2 * half;
    const std::vector<int> spread = modelPlane(scene, kernel, false, width, height);
    const std::vector<int> eroded = modelPlane(scene, kernel, true, width, height);
    std::vector<uint8_t> band;
    for (size_t i = 0; i < spread.size(); ++i) {
        const int value = position == 0   ? std::min(spread[i], eroded[i])
                          : position == 1 ? spread[i]
                                          : eroded[i];
        band.push_back(static_cast<uint8_t>(value));
    }
    GxBlender().drawBitmapBlend8(scene.box.left - 1 - half, scene.box.top - 1 - half, &layer,
                                 band.data(), width, height, width, color,
                                 mode != 1 && position == 0 ? 1 : 2);
    return layer;
}

TEST(GxStroke, EqualsItsDefinition) {
    gxtest::Random random(301);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 250; ++run) {
        Scene scene = gxtest::randomScene(random, 17);
        const float size = static_cast<float>(random.between(-20, 60)) * 0.1f;
        const int position = random.between(0, 3);
        const uint32_t mode = random.between(0, 1);
        const uint32_t color = random.word() | (random.oneIn(2) ? 0xFF000000u : 0);
        const bool both = random.oneIn(2);
        const GxBitmap expected = model(scene, scene.layer, size, color, position, mode);
        const GxBitmap otherExpected =
            both ? model(scene, scene.other, size, color, position, mode) : scene.other;
        paint(scene, size, color, position, mode, both);
        ASSERT_EQ(difference(expected, scene.layer), "")
            << run << " size " << size << " " << position;
        ASSERT_EQ(difference(otherExpected, scene.other), "") << run;
    }
}

// Each pixel is the tint's formula with the colour that the fill has there: that of a core that
// fills the stroke's whole box.
TEST(GxStroke, AFillIsATintOfManyColours) {
    gxtest::Random random(303);
    GX_TRACE_SEED(random);
    GxBitmap tile(3, 2, 4);
    for (int i = 0; i < 24; ++i) tile.data[i] = random.edgeByte();
    for (int run = 0; run < 150; ++run) {
        Scene scene = gxtest::randomScene(random, 17);
        const GxGradient stops[] = {{random.word(), 1, 0}, {random.word(), 1, 0.6f}};
        const int stopCount = random.between(1, 2);
        const GxLinearGradientProperty linear(45, 1, 1, stopCount, stops);
        const GxRadialGradientProperty radial(0, 0.7f, 1, stopCount, stops);
        const GxPatternProperty pattern(&tile, 1.5f, 0.8f);
        const GxProperty* const fills[] = {&linear, &radial, &pattern};
        const int kind = random.between(0, 2);
        GxStrokeProperty record(static_cast<float>(random.between(0, 50)) * 0.1f, 0xFFFFFFFF, 1, 0,
                                random.between(0, 2));
        const uint32_t mode = random.between(0, 1);

        // Coverage of the band: a white one on nothing.
        Scene white(scene);
        std::memset(white.layer.data, 0, white.layer.pixelCount() * 4);
        gxtest::paintWith<GxStroke>(white, record, mode);
        GxStroke core;
        const int margin = (core.setProperty(&record), core.getOffset());
        const int width = scene.box.right - scene.box.left + 2 * margin;
        const int height = scene.box.bottom - scene.box.top + 2 * margin;
        Scene filled(std::max(width, 1), std::max(height, 1), GxRect(0, 0, width, height));
        std::memset(filled.mask.data, 255, filled.mask.pixelCount());
        if (kind == 0) gxtest::paintWith<GxLinearGradient>(filled, linear);
        if (kind == 1) gxtest::paintWith<GxRadialGradient>(filled, radial);
        if (kind == 2) gxtest::paintWith<GxPattern>(filled, pattern);

        GxBitmap expected(scene.layer);
        auto* pixels = reinterpret_cast<kernels::Rgba*>(expected.data);
        for (int64_t i = 0; i < static_cast<int64_t>(expected.pixelCount()); ++i) {
            const int64_t x = i % expected.width - scene.box.left + margin;
            const int64_t y = i / expected.width - scene.box.top + margin;
            if (x < 0 || y < 0 || x >= width || y >= height) continue;
            const kernels::Rgba color = kernels::fromWord(filled.pixel(x, y));
            const uint32_t m = white.layer.data[i * 4 + 3];
            pixels[i] = record.position == 0 && mode == 0 ? kernels::srcOver8(pixels[i], m, color)
                                                          : kernels::dstOver8(pixels[i], m, color);
        }
        record.fill = fills[kind];
        gxtest::paintWith<GxStroke>(scene, record, mode);
        ASSERT_EQ(difference(expected, scene.layer), "")
            << run << " fill " << kind << " position " << record.position << " " << record.size;
    }
}

TEST(StrokeDistance, HonoursOriginsBandsAndWhatTheOutputHolds) {
    gxtest::Random random(302);
    GX_TRACE_SEED(random);
    const Kernel kernel(1.4f);
    ASSERT_EQ(kernel.size, 3);
    const std::vector<uint8_t> mask = random.edgeBytes(9 * 7);
    const std::vector<uint8_t> before = random.edgeBytes(2 * 12 * 10);
    for (int routine = 0; routine < 3; ++routine) {
        std::vector<uint8_t> out = before;
        StrokeDTArgs args;
        args.out = out.data();
        args.mask = mask.data();
        args.kernel = kernel.cells;
        args.maskStride = 9, args.maskHeight = 7, args.maskOriginY = 1, args.maskOriginX = 2;
        args.outStride = 12, args.outHeight = 10, args.outOriginY = 2, args.outOriginX = 3;
        args.planeSize = 120, args.kernelSize = 3, args.columns = 5;
        args.rowBegin = 1, args.rowEnd = 5;
        const auto run = routine == 0   ? GxStroke::partalDTStrokeOutside
                         : routine == 1 ? GxStroke::partalDTStrokeInside
                                        : GxStroke::partalDTStrokeCenter;
        std::vector<uint8_t> expected = before;
        const auto spread = [&](bool inverse, int plane) {
            for (int y = 1; y < 5; ++y) {
                for (int x = 0; x < 5; ++x) {
                    const int m = mask[(y + 1) * 9 + 2 + x];
                    for (int i = 0; i < 9; ++i) {
                        uint8_t& o = expected[plane + (y + 2 - 1 + i / 3) * 12 + x + 3 - 1 + i % 3];
                        const int k = kernel.cells[i];
                        o = static_cast<uint8_t>(std::max<int>(o, inverse  ? k - m
                                                                  : m == 0 ? 0
                                                                           : m + k - 255));
                    }
                }
            }
        };
        if (routine != 1) spread(false, 0);
        if (routine != 0) spread(true, routine == 2 ? 120 : 0);
        EXPECT_EQ(run(&args), 0);
        EXPECT_EQ(out, expected) << routine;
        // Bands and windows outside the planes are refused, null likewise.
        out = before;
        EXPECT_EQ(run(nullptr), 0);
        for (int32_t StrokeDTArgs::*field :
             {&StrokeDTArgs::rowEnd, &StrokeDTArgs::columns, &StrokeDTArgs::outOriginX,
              &StrokeDTArgs::outOriginY, &StrokeDTArgs::maskOriginY, &StrokeDTArgs::maskOriginX}) {
            for (int32_t value : {-5, 60, INT32_MIN, INT32_MAX}) {
                StrokeDTArgs odd = args;
                odd.*field = value;
                EXPECT_EQ(run(&odd), 0);
            }
        }
        EXPECT_EQ(out, before);
    }
}

}  // namespace
}  // namespace GxFontEffect
