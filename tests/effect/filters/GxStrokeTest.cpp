#include "effect/filters/GxStroke.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "effect/filters/PlaneModels.h"
#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Disc;
using gxtest::Plane;
using gxtest::Random;
using gxtest::Scene;

TEST(CircleKernel, CellsAreTheDiscsCoverage) {
    for (const float radius : {-1.0f, 0.0f, 0.3f, 0.5f, 1.0f, 1.4f, 1.5f, 2.0f, 5.7f, 40.0f}) {
        const Disc disc(radius);
        const int r = static_cast<int>(radius + 0.5f);
        ASSERT_EQ(disc.size, 2 * r + 1) << radius;
        for (int i = 0; i < disc.size * disc.size; ++i) {
            const double distance = std::hypot(i % disc.size - r, i / disc.size - r);
            const double covered = distance == 0 ? radius : radius - distance + 1;
            ASSERT_EQ(disc.cells[i], static_cast<int>(std::clamp(covered, 0.0, 1.0) * 255 + 0.5))
                << radius << " cell " << i;
        }
    }
}

TEST(CircleKernel, RefusesWhatHasNoCellsOrDoesNotFit) {
    EXPECT_EQ(makeCircleKernel(nullptr, 3.0f), 7);
    for (const auto& [radius, size] :
         {std::pair{-1.5f, -1}, {-9.0f, -15}, {30000.0f, 60001}, {gxtest::kInfinity, INT32_MAX}}) {
        const Disc disc(radius);
        EXPECT_EQ(disc.size, size);
        EXPECT_EQ(disc.cells, nullptr);
    }
    const Disc undefined(gxtest::kNaN);
    ASSERT_EQ(undefined.size, 1);
    EXPECT_EQ(undefined.at(0, 0), 0);
}

TEST(GxStroke, Margins) {
    for (const auto& [size, centre, outside] : {std::tuple{0.0f, 0, 0},
                                                {3.0f, 2, 3},
                                                {2.4f, 1, 2},
                                                {2.5f, 1, 3},
                                                {-3.0f, -1, -2},
                                                {1e30f, INT32_MAX, INT32_MAX}}) {
        for (int position : {0, 1, 2, 5, -1}) {
            const int margin = position == 0 ? centre : position == 1 ? outside : 0;
            EXPECT_EQ(gxtest::marginsOf<GxStroke>(GxStrokeProperty(size, 0, 1, 0, position)),
                      (std::array{margin, margin, margin, margin}))
                << size << " " << position;
        }
    }
}

GxBitmap model(const Scene& scene, const GxBitmap& before, const GxStrokeProperty& record,
               uint32_t mode) {
    GxBitmap layer(before);
    const Disc disc(record.position == 0 ? record.size * 0.5f : record.size);
    // The box in a frame of one pixel, and the disc's reach around it.
    const int half = disc.size / 2;
    const int width = scene.box.right - scene.box.left + 2 + 2 * half;
    const int height = scene.box.bottom - scene.box.top + 2 + 2 * half;
    const auto spread = [&](bool isInverse) {
        const Plane plane(width, height, 0, [&](int x, int y) {
            const bool isFramed = x >= half && y >= half && x < width - half && y < height - half;
            const int m = scene.coverageInBox(x - half - 1, y - half - 1);
            return !isFramed ? 0 : isInverse ? 255 - m : m;
        });
        return gxtest::dilated(plane, disc);
    };
    const Plane letters = spread(false), background = spread(true);
    const Plane band(width, height, 0, [&](int x, int y) {
        const int outside = letters.at(x, y), inside = background.at(x, y);
        return record.position == 0   ? std::min(outside, inside)
               : record.position == 1 ? outside
                                      : inside;
    });
    GxBlender().drawBitmapBlend8(scene.box.left - 1 - half, scene.box.top - 1 - half, &layer,
                                 band.bytes().data(), width, height, width, record.color,
                                 mode != 1 && record.position == 0 ? 1 : 2);
    return layer;
}

TEST(GxStroke, EqualsItsDefinition) {
    gxtest::forRandomScenes(301, 250, 17, [](Random& random, Scene& scene) {
        const GxStrokeProperty record(static_cast<float>(random.between(-20, 60)) * 0.1f,
                                      random.word() | (random.oneIn(2) ? 0xFF000000u : 0), 0.1f, 9,
                                      random.between(0, 3));
        const uint32_t mode = random.between(0, 1);
        const bool both = random.oneIn(2);
        const GxBitmap expected = model(scene, scene.layer, record, mode);
        const GxBitmap otherExpected = both ? model(scene, scene.other, record, mode) : scene.other;
        gxtest::paintWith<GxStroke>(scene, record, mode, both);
        ASSERT_EQ(difference(expected, scene.layer), "") << record.size << " " << record.position;
        ASSERT_EQ(difference(otherExpected, scene.other), "");
    });
}

// Each pixel is the tint's formula with the colour that the fill has there: that of a core that
// fills the stroke's whole box.
TEST(GxStroke, AFillIsATintOfManyColours) {
    gxtest::forRandomScenes(303, 150, 17, [](Random& random, Scene& scene) {
        GxBitmap tile(3, 2, 4);
        for (int i = 0; i < 24; ++i) tile.data[i] = random.edgeByte();
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
            << "fill " << kind << " position " << record.position << " " << record.size;
    });
}

// The public routines: on a window of the planes, over what the output holds.
TEST(StrokeDistance, HonoursOriginsBandsAndWhatTheOutputHolds) {
    Random random(302);
    GX_TRACE_SEED(random);
    const Disc kernel(1.4f);
    const std::vector<uint8_t> mask = random.edgeBytes(9 * 7);
    const std::vector<uint8_t> before = random.edgeBytes(2 * 12 * 10);
    for (const auto run : {GxStroke::partalDTStrokeOutside, GxStroke::partalDTStrokeInside,
                           GxStroke::partalDTStrokeCenter}) {
        const bool isCentre = run == GxStroke::partalDTStrokeCenter;
        std::vector<uint8_t> out = before;
        StrokeDTArgs args;
        args.out = out.data(), args.mask = mask.data(), args.kernel = kernel.cells;
        args.maskStride = 9, args.maskHeight = 7, args.maskOriginY = 1, args.maskOriginX = 2;
        args.outStride = 12, args.outHeight = 10, args.outOriginY = 2, args.outOriginX = 3;
        args.planeSize = 120, args.kernelSize = 3, args.columns = 5;
        args.rowBegin = 1, args.rowEnd = 5;
        std::vector<uint8_t> expected = before;
        const auto spread = [&](bool isInverse, int plane) {
            for (int i = 0; i < 4 * 5 * 9; ++i) {
                const int x = i / 9 % 5, y = 1 + i / 45, cell = i % 9;
                const int m = mask[(y + 1) * 9 + 2 + x];
                uint8_t& o = expected[plane + (y + 1 + cell / 3) * 12 + x + 2 + cell % 3];
                const int value = (isInverse ? 255 - m : m) + kernel.cells[cell] - 255;
                o = static_cast<uint8_t>(std::max<int>(o, value));
            }
        };
        if (run != GxStroke::partalDTStrokeInside) spread(false, 0);
        if (run != GxStroke::partalDTStrokeOutside) spread(true, isCentre ? 120 : 0);
        EXPECT_EQ(run(&args), 0);
        EXPECT_EQ(out, expected);
        // Bands and windows outside the planes are refused, null likewise.
        out = before;
        EXPECT_EQ(run(nullptr), 0);
        for (const auto field :
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
