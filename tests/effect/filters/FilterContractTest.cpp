// What every filter answers to missing, odd and hostile input.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "effect/GxCoreFactory.h"
#include "effect/GxProperty.h"
#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"
#include "effect/filters/GxInnerShadow.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "raster/GxMath.h"
#include "support/AllocationFailure.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Scene;

// A filter, and a record for it: of that size, and with `v` for every other number. 3 and 1 paint.
struct Filter {
    int style;
    std::function<void(GxECoreBase&, float size, float v)> give;
};

void PrintTo(const Filter& filter, std::ostream* out) {
    *out << "style " << filter.style;
}

constexpr uint32_t kGreen = 0xFF00FF00;

template <typename Record, typename... Fields>
void give(GxECoreBase& core, Fields... fields) {
    const Record record(fields...);
    core.setProperty(&record);
}

// Stops and a picture for a record to point at. Afterwards they are blank: a core has its own.
template <typename Give>
void lend(float v, const Give& give) {
    static std::array<GxGradient, 3> stops;
    static GxBitmap picture(3, 2, 4);
    stops = {{{0xFFFF0000, v, v - 1}, {0x80123456, v, 0.5f}, {0xFF0000FF, v, v}}};
    std::memset(picture.data, 255, 24);
    give(stops.data(), &picture);
    stops = {};
    std::memset(picture.data, 0, 24);
}

template <typename Record>
void giveGlow(GxECoreBase& core, float size, float v) {
    lend(v, [&](auto* stops, auto*) { give<Record>(core, size, kGreen, v, 3, stops); });
}
template <typename Record>
void giveGradient(GxECoreBase& core, float /*size*/, float v) {
    lend(v, [&](auto* stops, auto*) { give<Record>(core, v, v, v, 3, stops); });
}
// Fields are public: what the constructor would clamp can still be set.
void givePattern(GxECoreBase& core, float /*size*/, float v) {
    lend(v, [&](auto*, auto* picture) {
        GxPatternProperty record(picture, v, v);
        record.scale = v;
        core.setProperty(&record);
    });
}
void giveFilledStroke(GxECoreBase& core, float size, float v) {
    lend(v, [&](auto* stops, auto*) {
        const GxLinearGradientProperty fill(v, v, v, 3, stops);
        GxStrokeProperty record(size, kGreen, v, 0, GxStrokeProperty::kOutside);
        record.fill = &fill;
        core.setProperty(&record);
    });
}
template <typename Record>
void giveRelief(GxECoreBase& core, float size, float v) {
    Record record(0, size, v, 0, 0, 2, v, v, v, kGreen, 1, kGreen, 1);
    record.depth = record.angle = record.altitude = v;
    record.soften = toInt(v);
    core.setProperty(&record);
}
template <typename Record>
void giveShadow(GxECoreBase& core, float size, float v) {
    give<Record>(core, v, size, size, kGreen, v);
}
void giveStroke(GxECoreBase& core, float size, float v) {
    give<GxStrokeProperty>(core, size, kGreen, v, 0, GxStrokeProperty::kCenter);
}

const Filter kFilters[] = {
    {GXE_STYLE_OUTER_SHADOW, giveShadow<GxOuterShadowProperty>},
    {GXE_STYLE_INNER_SHADOW, giveShadow<GxInnerShadowProperty>},
    {GXE_STYLE_OUTER_GLOW, giveGlow<GxOuterGlowProperty>},
    {GXE_STYLE_INNER_GLOW, giveGlow<GxInnerGlowProperty>},
    {GXE_STYLE_BEVEL, giveRelief<GxBevelProperty>},
    {GXE_STYLE_EMBOSS, giveRelief<GxEmbossProperty>},
    {GXE_STYLE_LINEAR_GRADIENT, giveGradient<GxLinearGradientProperty>},
    {GXE_STYLE_RADIAL_GRADIENT, giveGradient<GxRadialGradientProperty>},
    {GXE_STYLE_PATTERN, givePattern},
    {GXE_STYLE_STROKE, giveStroke},
    {GXE_STYLE_STROKE, giveFilledStroke},
};

class Filters : public testing::TestWithParam<Filter> {
protected:
    Filters() : core(makeEffectCore(GetParam().style)) {}

    // False when the core says that it ran out of memory.
    bool paint(Scene& scene) {
        auto param = scene.param();
        core->doPostProcessing(&param);
        return !param.outOfMemory;
    }
    bool paintsNothing(Scene& scene) {
        const GxBitmap before(scene.layer);
        paint(scene);
        return difference(before, scene.layer).empty();
    }

    std::unique_ptr<GxECoreBase> core;
    Scene scene{{"   ", " #4", "###"}, 4};
};

TEST_P(Filters, WithoutARecordPaintNothingAndHaveNoMargin) {
    EXPECT_EQ(core->getStyle(), GetParam().style);
    EXPECT_EQ(core->getOffset(), 0);
    EXPECT_TRUE(paintsNothing(scene));
}

TEST_P(Filters, KeepsItsRecord) {
    GetParam().give(*core, 3, 1);
    const GxProperty* record = core->getProperty();
    ASSERT_NE(record, nullptr);
    core->setProperty(nullptr);
    const GxTextProperty other(0, 1);
    core->setProperty(&other);
    EXPECT_EQ(core->getProperty(), record);
    core->setProperty(core->getProperty());
    EXPECT_FALSE(paintsNothing(scene)) << "its own record too";
}

TEST_P(Filters, DoesNothingWithoutItsInputs) {
    GetParam().give(*core, 3, 1);
    core->doPostProcessing(nullptr);
    GxBitmap empty;
    const std::vector<std::function<void(GxECore::ParamPostProcessing&)>> losses = {
        [](auto& param) { param.dst = nullptr; },      [](auto& param) { param.src = nullptr; },
        [](auto& param) { param.textRect = nullptr; }, [&](auto& param) { param.dst = &empty; },
        [&](auto& param) { param.src = &empty; },      [](auto& param) { param.src = param.dst; }};
    for (const auto& lose : losses) {
        auto param = scene.param();
        lose(param);
        const GxBitmap before(scene.layer);
        core->doPostProcessing(&param);
        EXPECT_EQ(difference(before, scene.layer), "");
    }
}

TEST_P(Filters, StaysInItsReach) {
    gxtest::Random random(310);
    GX_TRACE_SEED(random);
    for (const float size : {1.0f, 2.5f, 6.0f, 12.0f}) {
        GetParam().give(*core, size, 1);
        Scene framed(100, 100, GxRect(40, 40, 60, 60));
        for (int i = 0; i < 400; ++i) {
            framed.mask.data[(40 + i / 20) * 100 + 40 + i % 20] = random.edgeByte();
        }
        paint(framed);
        for (int i = 0; i < 10000; ++i) {
            const int x = i % 100, y = i / 100;
            const int distance = std::max({40 - x, x - 59, 40 - y, y - 59});
            ASSERT_TRUE(distance <= core->getReach() || framed.pixel(x, y) == 0)
                << "size " << size << ": " << x << ", " << y;
        }
    }
}

TEST_P(Filters, SurvivesOddRectanglesAndLayers) {
    GetParam().give(*core, 3, 1);
    constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
    constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
    constexpr int32_t edges[] = {kMin, kMin + 3, -9, 0, 3, 5, 8, 30, kMax - 3, kMax};
    gxtest::Random random(309);
    GX_TRACE_SEED(random);
    const auto edge = [&] { return edges[random.between(0, 9)]; };
    for (int i = 0; i < 200; ++i) {
        scene.box = GxRect(edge(), edge(), edge(), edge());
        const bool isTurned = scene.box.right < scene.box.left || scene.box.bottom < scene.box.top;
        if (isTurned) {
            EXPECT_TRUE(paintsNothing(scene)) << scene.box.left << " " << scene.box.right;
        } else {
            paint(scene);
        }
    }
    for (uint32_t size : {1u, 2u, 5u, 40u}) {
        Scene other(6, 6);
        std::memset(other.mask.data, 200, 36);
        other.layer = GxBitmap(size, size, 4);
        paint(other);
    }
}

TEST_P(Filters, HostileNumbers) {
    constexpr float kMax = std::numeric_limits<float>::max();
    for (const float size : {kMax, 0x1p31f, 1e9f, 1e6f, 1000.0f, 2.0f, 0.6f, 1e-45f, 0.0f,
                             gxtest::kInfinity, gxtest::kNaN}) {
        for (const float v : {size, -size}) {
            SCOPED_TRACE(v);
            GetParam().give(*core, v, v);
            for (auto offset : {&GxECoreBase::getLeftOffset, &GxECoreBase::getRightOffset,
                                &GxECoreBase::getTopOffset, &GxECoreBase::getBottomOffset}) {
                (core.get()->*offset)();
            }
            paint(scene);
        }
    }
}

TEST_P(Filters, AFailedAllocationLeavesTheLayersAloneAndIsReported) {
    GetParam().give(*core, 3, 1);
    const GxBitmap before(scene.layer);
    EXPECT_TRUE(paint(scene));
    const GxBitmap painted(scene.layer);
    ASSERT_NE(difference(before, painted), "");

    scene.layer = before;
    bool whole = false;
    const int failures = gxtest::failEachAllocation(
        [&] { whole = paint(scene); },
        [&](int n) {
            EXPECT_EQ(difference(whole ? painted : before, scene.layer), "") << "allocation " << n;
        });
    EXPECT_GT(failures, 0);
    EXPECT_TRUE(whole);
}

TEST_P(Filters, AFailedCopyKeepsTheRecord) {
    GetParam().give(*core, 3, 1);
    bool failed = true;
    for (int n = 1; failed; ++n) {
        const GxProperty* record = core->getProperty();
        const gxtest::AllocationFailure failure(n);
        GetParam().give(*core, 3, 1);
        failed = failure.triggered();
        EXPECT_EQ(core->keptLastProperty(), !failed);
        if (failed) {
            EXPECT_EQ(core->getProperty(), record) << "allocation " << n;
        }
    }
    EXPECT_FALSE(paintsNothing(scene));
}

std::string styleName(const testing::TestParamInfo<Filter>& info) {
    return std::to_string(info.index) + "Style" + std::to_string(info.param.style);
}
INSTANTIATE_TEST_SUITE_P(Styles, Filters, testing::ValuesIn(kFilters), styleName);

// Every pixel of a square that the record is to leave alone.
template <typename Core, typename Record>
void expectNothingPainted(const Record& record) {
    Scene scene({"###", "###", "###"}, 3);
    gxtest::paintWith<Core>(scene, record);
    EXPECT_EQ(difference(GxBitmap(9, 9, 4), scene.layer), "");
}

TEST(FilterRecords, WithNothingToPaintLeaveTheLayer) {
    const GxGradient stops[] = {{0xFF000000, 1, 0}, {0xFF0000FF, 1, 1}};
    for (const float scale : {0.05f, 0.0f, -3.0f, gxtest::kNaN, 0.099f}) {
        expectNothingPainted<GxLinearGradient>(GxLinearGradientProperty(0, scale, 1, 2, stops));
        expectNothingPainted<GxRadialGradient>(GxRadialGradientProperty(0, scale, 1, 2, stops));
    }
    expectNothingPainted<GxLinearGradient>(GxLinearGradientProperty(0, 1, 1, 0, stops));
    expectNothingPainted<GxRadialGradient>(GxRadialGradientProperty(0, 1, 1, 2, nullptr));
    GxBitmap empty, none(0, 4, 4), mask(2, 2, 1), fine(2, 2, 4);
    std::memset(mask.data, 255, 4);
    std::memset(fine.data, 255, 16);
    for (GxBitmap* picture : {&empty, &none, &mask, static_cast<GxBitmap*>(nullptr)}) {
        expectNothingPainted<GxPattern>(GxPatternProperty(picture, 1, 1));
    }
    expectNothingPainted<GxPattern>(GxPatternProperty(&fine, 0.05f, 1));
    for (const auto& [size, depth] :
         {std::pair{0.0f, 1.0f}, {0.4f, 1.0f}, {-3.0f, 1.0f}, {gxtest::kNaN, 1.0f}, {5, 0.004f}}) {
        for (const int kind : {0, 1}) {
            const GxBevelProperty bevel(kind, size, depth, 0, 0, 3, 1, 120, 30, kGreen, 1, 0, 1);
            expectNothingPainted<GxBevel>(bevel);
            EXPECT_EQ(gxtest::marginsOf<GxBevel>(bevel), (std::array{0, 0, 0, 0}));
            expectNothingPainted<GxEmboss>(
                GxEmbossProperty(kind, size, depth, 0, 0, 3, 1, 120, 30, kGreen, 1, 0, 1));
        }
    }
}

// Fields that were set past what the constructor lets through.
TEST(FilterRecords, AreReducedWhenTheyAreGiven) {
    GxLinearGradientProperty gradient(0, 1, 1, 0, nullptr);
    gradient.angle = -725;
    gradient.scale = 9;
    GxLinearGradient linear;
    linear.setProperty(&gradient);
    const auto& kept = dynamic_cast<const GxLinearGradientProperty&>(*linear.getProperty());
    EXPECT_EQ(kept.angle, -5.0f);
    EXPECT_EQ(kept.scale, 2.0f);
    GxInnerShadowProperty shadow(0, 1, 1, 0, 1);
    shadow.angle = -725.9f;
    GxInnerShadow inner;
    inner.setProperty(&shadow);
    EXPECT_EQ(dynamic_cast<const GxInnerShadowProperty&>(*inner.getProperty()).angle, -5.0f);
}

}  // namespace
}  // namespace GxFontEffect
