// Order, layers, margins and record conversions of the stack, with a recording core for every style
// in place of the real filters: this program brings its own makeEffectCore.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "effect/GxCoreFactory.h"
#include "effect/GxEffect.h"
#include "effect/filters/GxText.h"
#include "support/NotFinite.h"

namespace GxFontEffect {
namespace {

using gxtest::kInfinity;
using gxtest::kNaN;
using testing::ElementsAre;

struct Call {
    int style;
    const GxBitmap* dst;
    const GxBitmap* other;
};
std::vector<Call> calls;                                            // of doPostProcessing
std::function<void(int, GxBitmap*)> paint = [](int, GxBitmap*) {};  // called by it
std::array<int, 4> offsets[14];  // left, top, right, bottom per style

// Records calls; copies its record, stops included, as the filters do.
template <typename Property>
class RecordingCore : public GxPropertyCore<Property> {
public:
    explicit RecordingCore(int style) : GxPropertyCore<Property>(style) {}
    void doPostProcessing(GxECore::ParamPostProcessing* param) override {
        calls.push_back({this->style, param->dst, param->other});
        paint(this->style, param->dst);
    }
    int getLeftOffset() override { return offsets[this->style][0]; }
    int getTopOffset() override { return offsets[this->style][1]; }
    int getRightOffset() override { return offsets[this->style][2]; }
    int getBottomOffset() override { return offsets[this->style][3]; }
};

template <typename Property>
class RecordingStopsCore : public RecordingCore<Property> {
public:
    using RecordingCore<Property>::RecordingCore;
    void setProperty(const GxProperty* source) override {
        RecordingCore<Property>::setProperty(source);
        if (!this->property || !source || this->property->stopCount == 0) return;
        stops.assign(this->property->stops, this->property->stops + this->property->stopCount);
        this->property->stops = stops.data();
    }
    std::vector<GxGradient> stops;
};

template <typename Core>
GxECoreBase* make(int style) {
    return new Core(style);
}

}  // namespace

GxECoreBase* makeEffectCore(int style) {
    static const std::map<int, GxECoreBase* (*)(int)> cores = {
        {1, make<RecordingCore<GxOuterShadowProperty>>},
        {2, make<RecordingCore<GxInnerShadowProperty>>},
        {3, make<RecordingStopsCore<GxOuterGlowProperty>>},
        {4, make<RecordingStopsCore<GxInnerGlowProperty>>},
        {5, make<RecordingCore<GxBevelProperty>>},
        {6, make<RecordingCore<GxEmbossProperty>>},
        {7, make<RecordingStopsCore<GxLinearGradientProperty>>},
        {8, make<RecordingStopsCore<GxRadialGradientProperty>>},
        {10, make<RecordingCore<GxStrokeProperty>>},
        {11, make<RecordingCore<GxPatternProperty>>},
        {12, make<RecordingCore<GxTextProperty>>},
    };
    const auto found = cores.find(style);
    return found == cores.end() ? nullptr : found->second(style);
}

namespace {

class GxEffectStack : public testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        paint = [](int, GxBitmap*) {};
        for (auto& side : offsets) side = {0, 0, 0, 0};
    }

    // `detail` is the position of a stroke or the kind of a bevel.
    void add(int style, int detail = 1) {
        const std::map<int, std::function<int()>> adds = {
            {1, [&] { return stack.addOuterShadowText(0, 1, 2, 0, 1); }},
            {2, [&] { return stack.addInnerShadowText(0, 1, 2, 0, 1); }},
            {3, [&] { return stack.addOuterGlowText(1, 0, 1, 0, nullptr); }},
            {4, [&] { return stack.addInnerGlowText(1, 0, 1, 0, nullptr); }},
            {5, [&] { return stack.addBevelText(detail, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1); }},
            {6, [&] { return stack.addEmbossText(1, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1); }},
            {7, [&] { return stack.addLinearGradientText(0, 1, 1, 0, nullptr); }},
            {8, [&] { return stack.addRadialGradientText(1, 1, 0, nullptr); }},
            {10, [&] { return stack.addStrokeText(1, 0, 1, 0, detail); }},
            {11, [&] { return stack.addPatternText(&pattern, 1, 1); }},
            {12, [&] { return stack.addText(0xFF000000); }},
        };
        ASSERT_GE(adds.at(style)(), 0) << style;
    }

    std::vector<int> layerStyles() const {
        std::vector<int> styles;
        for (GxECoreBase* core : stack.getLayers()) styles.push_back(core->getStyle());
        return styles;
    }

    // A whole render of one covered pixel at (1, 1) of 4 x 4.
    void render() {
        stack.initEffect(4, 4);
        stack.setDstBitmap(&output);
        uint8_t coverage = 255;
        GxGlyph glyph;
        glyph.pixels = &coverage;
        glyph.width = glyph.height = 1;
        stack.renderEffectLayer(1, 1, &glyph);
        stack.doEffectPostProcessing();
    }

    template <typename Property>
    const Property& record(int style) {
        return dynamic_cast<const Property&>(*stack.getEffect(style)->getProperty());
    }

    GxBitmap pattern{2, 2, 4};
    GxBitmap output{4, 4, 4};
    GxEffect stack;
};

// --- order ---

TEST_F(GxEffectStack, LayerOrders) {
    struct Added {
        int style;
        int detail = 1;  // stroke position, bevel kind
    };
    struct Case {
        std::vector<Added> added;
        float opacity;
        uint32_t mode;
        std::vector<int> layers;
    };
    const Case cases[] = {
        {{{12}, {1}}, 1, 0, {12, 1}},
        {{{1}, {12}}, 1, 0, {12, 1}},
        // Over the text newest first, the text, beneath it newest first.
        {{{2}, {1}, {7}, {12}, {3}, {4}}, 1, 0, {4, 7, 2, 12, 3, 1}},
        {{{12}, {10, 1}, {1}}, 1, 0, {12, 1, 10}},  // outside stroke: beneath
        {{{12}, {10, 2}, {1}}, 1, 0, {10, 12, 1}},  // inside stroke: over
        {{{12}, {10, 9}, {1}}, 1, 0, {10, 12, 1}},  // unknown position: over
        {{{12}, {5, 1}, {8}}, 1, 0, {8, 5, 12}},    // inside bevel: over
        {{{12}, {5, 0}, {11}}, 1, 0, {11, 12, 5}},  // other bevels: beneath
        // Two layers: newest first, the text last.
        {{{12}, {1}, {2}}, 0.5f, 1, {2, 1, 12}},
        {{{1}, {12}, {2}, {3}}, 0.0f, 1, {3, 2, 1, 12}},
        {{{12}, {10, 0}, {1}}, 1, 1, {1, 10, 12}},  // a centred stroke asks for them
        {{{6}, {12}, {1}}, 1, 1, {1, 6, 12}},       // and so does an emboss
        {{{1}, {2}}, 0.5f, 1, {2, 1}},
        {{}, 1, 0, {}},
    };
    for (const Case& c : cases) {
        stack.cleanAllEffect();
        for (const Added& added : c.added) add(added.style, added.detail);
        stack.setTextOpacity(c.opacity);
        stack.initEffect(4, 4);
        EXPECT_EQ(stack.getMode(), c.mode);
        EXPECT_EQ(layerStyles(), c.layers) << testing::PrintToString(c.layers);
    }
}

// Newest on top within a style as between styles, in both modes; the text fill stays one.
TEST_F(GxEffectStack, RepeatsAreEffectsOfTheirOwn) {
    stack.setRepeats(true);
    const auto ids = [&] {
        std::vector<int> list;
        for (GxECoreBase* core : stack.getLayers()) list.push_back(core->getId());
        return list;
    };
    for (const int style : {1, 10, 12, 2, 1, 10, 2, 12}) add(style);
    stack.initEffect(4, 4);
    EXPECT_THAT(ids(), ElementsAre(6, 3, 2, 5, 4, 1, 0));
    stack.setTextOpacity(0.5f);
    stack.initEffect(4, 4);
    EXPECT_THAT(ids(), ElementsAre(6, 5, 4, 3, 1, 0, 2));

    const GxStrokeProperty wide(9, 0, 1, 0, 1);
    EXPECT_EQ(stack.addEffect(40, 10, &wide), 40);
    EXPECT_EQ(stack.addEffect(40, 10, &wide), 7) << "an id that is taken";
    EXPECT_EQ(stack.addEffect(8, 10, &wide), 8);
    EXPECT_EQ(stack.addEffect(10, &wide), 9) << "ids in use are skipped";
    EXPECT_EQ(stack.getEffect(10)->getId(), 1) << "the first of its style";
    EXPECT_TRUE(stack.removeEffect(1));
    EXPECT_EQ(stack.getEffect(10)->getId(), 5);
    EXPECT_EQ(stack.findEffect(1), nullptr);

    GxEffect copy(stack);
    const std::unique_ptr<char[]> key(stack.getMapKey()), copied(copy.getMapKey());
    EXPECT_STREQ(key.get(), copied.get());
    EXPECT_EQ(testing::PrintToString(std::string(key.get())).find("K\x89"), std::string::npos);
    EXPECT_EQ(std::count(key.get(), key.get() + std::strlen(key.get()), 'K'), 5);
    EXPECT_EQ(copy.addStrokeText(1, 0, 1, 0, 1), 10) << "a copy repeats too";
    stack.setRepeats(false);
    EXPECT_EQ(stack.addStrokeText(1, 0, 1, 0, 1), 5) << "the first one's settings";
    EXPECT_EQ(GxEffect(stack).findEffect(40)->getId(), 40);
}

TEST_F(GxEffectStack, TargetsInTwoLayerMode) {
    struct Case {
        int style, detail;
        bool back, other;
    };
    const Case cases[] = {
        {1, 1, true, false},   {2, 1, false, false},  {3, 1, true, false},   {4, 1, false, false},
        {5, 0, true, false},   {5, 1, false, false},  {5, 2, true, false},   {6, 1, true, true},
        {7, 1, false, false},  {8, 1, false, false},  {10, 0, true, true},   {10, 1, true, false},
        {10, 2, false, false}, {10, 77, true, false}, {11, 1, false, false}, {12, 1, false, false},
    };
    for (const Case& c : cases) {
        stack.cleanAllEffect();
        calls.clear();
        add(c.style, c.detail);
        stack.setTextOpacity(0.5f);
        render();
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_EQ(calls[0].dst != &output, c.back) << c.style << " " << c.detail;
        EXPECT_NE(calls[0].dst, nullptr);
        EXPECT_EQ(calls[0].other, c.other ? &output : nullptr) << c.style << " " << c.detail;
        stack.compositeLayers(&output);
        EXPECT_EQ(stack.getMode(), 0u);
        EXPECT_EQ(stack.getSrcBitmap(), nullptr);
    }
}

TEST_F(GxEffectStack, OutsideTheTextTheBackLayerShows) {
    add(1);
    add(12);
    stack.setTextOpacity(0.5f);
    paint = [](int style, GxBitmap* dst) {
        for (int i = 0; i < 64; ++i) {
            dst->data[i] = static_cast<uint8_t>(i % 4 == 3 ? 255 : style);
        }
    };
    render();
    stack.compositeLayers(&output);
    EXPECT_EQ(output.data[5 * 4], 12);
    EXPECT_EQ(output.data[0], 1);
}

// --- keeping inside effects inside ---

TEST_F(GxEffectStack, ConfinementClearsWhatLiesOutsideTheGlyphsBeforeTheFill) {
    paint = [](int style, GxBitmap* dst) { std::memset(dst->data, style, size_t{16} * 4); };
    const auto paintedOutside = [&] { return static_cast<int>(output.data[0]); };
    for (int style : {2, 4, 7, 8, 11}) {
        stack.cleanAllEffect();
        add(style);
        stack.setConfineInside(false);
        render();
        EXPECT_EQ(paintedOutside(), style);
        stack.setConfineInside(true);
        render();
        EXPECT_EQ(paintedOutside(), 0) << style;
        EXPECT_EQ(output.data[5 * 4], style) << "covered pixels stay";
    }
    // The pass comes before the text and what lies beneath it.
    stack.cleanAllEffect();
    add(2);
    add(12);
    std::vector<std::pair<int, int>> seen;  // style, first byte before it paints
    paint = [&](int style, GxBitmap* dst) {
        seen.emplace_back(style, dst->data[0]);
        std::memset(dst->data, style, size_t{16} * 4);
    };
    std::memset(output.data, 0, 64);
    render();
    EXPECT_THAT(seen, ElementsAre(std::pair(2, 0), std::pair(12, 0)));
    EXPECT_EQ(paintedOutside(), 12);
    // Never in two-layer mode: the mix does it.
    stack.setTextOpacity(0.5f);
    seen.clear();
    render();
    EXPECT_EQ(seen.back(), (std::pair(12, 2)));
}

// --- margins and key ---

TEST_F(GxEffectStack, TheWidestEffectDecidesEachMargin) {
    add(1);
    add(3);
    add(12);
    offsets[1] = {-5, 9, 3, 0};
    offsets[3] = {4, 4, 4, -1};
    EXPECT_EQ(stack.getLeftOffset(), 4);
    EXPECT_EQ(stack.getTopOffset(), 9);
    EXPECT_EQ(stack.getRightOffset(), 4);
    EXPECT_EQ(stack.getBottomOffset(), 0);
}

TEST_F(GxEffectStack, SilhouettesShowInMarginsAndKeys) {
    stack.setRepeats(true);
    offsets[1] = {4, 0, 0, 9};
    offsets[10] = {6, 6, 6, 6};
    for (const int style : {1, 2, 3, 4, 10, 12}) add(style);
    const auto keyOf = [](GxEffect& of) {
        const std::unique_ptr<char[]> text(of.getMapKey());
        return std::string(text.get());
    };
    const std::string plain = keyOf(stack);
    const GxSilhouette outline{GxSilhouette::kOutline, 0};
    EXPECT_FALSE(stack.setSilhouette(6, outline));
    EXPECT_EQ(stack.getBottomOffset(), 9);
    for (const int other : {4, 5}) EXPECT_TRUE(stack.setSilhouette(other, {1, 50}));
    EXPECT_TRUE(stack.setSilhouette(1, {1, 0.9f}));
    EXPECT_EQ(keyOf(stack), plain) << "neither stroke nor fill casts; inner ones only choke";
    EXPECT_TRUE(stack.setSilhouette(0, outline));
    EXPECT_EQ(stack.getLeftOffset(), 10);
    EXPECT_TRUE(stack.setSilhouette(0, {GxSilhouette::kOutline, 3.9f}));
    EXPECT_EQ(stack.getBottomOffset(), 18);
    EXPECT_TRUE(stack.setSilhouette(2, {7, kNaN}));
    EXPECT_TRUE(stack.setSilhouette(3, {1, kInfinity}));
    EXPECT_EQ(stack.getBottomOffset(), 18) << "what chokes needs no room";
    std::string key = plain;
    key.insert(plain.find('I'), "C\x81\x83");
    key.insert(key.find('K'), "C\x80\xE4");
    EXPECT_EQ(keyOf(stack), key);
    GxEffect copy(stack);
    EXPECT_EQ(keyOf(copy), key);
    EXPECT_EQ(copy.getBottomOffset(), 18);
    EXPECT_TRUE(stack.setSilhouette(0, {}));
    EXPECT_TRUE(stack.setSilhouette(3, {}));
    EXPECT_EQ(keyOf(stack), plain);
}

// --- conversions of the add operations ---

TEST_F(GxEffectStack, AnglesAndPercentages) {
    struct Case {
        float angle, wrapped, size, clamped;
    };
    const Case cases[] = {{-30, 330, 5.9f, 5},
                          {725.9f, 5, -3, 0},
                          {-0.9f, 0, 100.5f, 100},
                          {360, 0, 1e30f, 100},
                          {kNaN, 0, kNaN, 0},
                          {-359.5f, 1, 0.99f, 0},
                          {kInfinity, static_cast<float>(INT32_MAX % 360), kInfinity, 100}};
    for (const Case& c : cases) {
        stack.addOuterShadowText(c.angle, c.size, c.size, 0, 1);
        stack.addInnerShadowText(c.angle, c.size, c.size, 0, 1);
        stack.addStrokeText(c.size, 0, 1, 7, -8);
        const auto& outer = record<GxOuterShadowProperty>(1);
        EXPECT_EQ(outer.angle, c.wrapped) << c.angle;
        EXPECT_EQ(outer.distance, c.clamped) << c.size;
        EXPECT_EQ(outer.size, c.clamped) << c.size;
        EXPECT_EQ(record<GxInnerShadowProperty>(2).angle, c.wrapped);
        EXPECT_EQ(record<GxStrokeProperty>(10).size, c.clamped);
    }
    EXPECT_EQ(record<GxStrokeProperty>(10).cap, 7);
    EXPECT_EQ(record<GxStrokeProperty>(10).position, -8);
}

TEST_F(GxEffectStack, ColoursTakeTheOpacity) {
    // Premultiplied: shadows and stroke. Opacity 0.2: a = trunc(51.5) = 51; 0xFF: 51 x 256 >> 8 =
    // 51; 0x80: 51 x 129 >> 8 = 25.
    stack.addOuterShadowText(0, 0, 0, 0x00FF8000, 0.2f);
    stack.addStrokeText(0, 0x77FF8000, 0.2f, 0, 0);
    EXPECT_EQ(record<GxOuterShadowProperty>(1).color, 0x33331900u);
    EXPECT_EQ(record<GxStrokeProperty>(10).color, 0x33331900u);
    // As alpha: glows and bevels.
    stack.addOuterGlowText(0, 0x00FF8000, 0.2f, 0, nullptr);
    EXPECT_EQ(record<GxOuterGlowProperty>(3).color, 0x33FF8000u);
    stack.addBevelText(1, 2, 99, 3, 4, 99, 1, -30, -30, 0x00FF8000, 0.2f, 0xFF123456, kNaN);
    const auto& bevel = record<GxBevelProperty>(5);
    EXPECT_EQ(bevel.highlightColor, 0x33FF8000u);
    EXPECT_EQ(bevel.shadowColor, 0x00123456u);
    EXPECT_EQ(bevel.angle, 330.0f);
    EXPECT_EQ(bevel.altitude, 60.0f);
    EXPECT_EQ(bevel.soften, 16);
    EXPECT_EQ(bevel.depth, 10.0f);
    stack.addOuterShadowText(0, 0, 0, 0xFFFFFFFF, 7.0f);
    EXPECT_EQ(record<GxOuterShadowProperty>(1).color, 0xFFFFFFFFu);
    EXPECT_EQ(record<GxOuterShadowProperty>(1).opacity, 1.0f);
}

TEST_F(GxEffectStack, StopsFoldTheOpacityIn) {
    const GxGradient stops[] = {{0x12345678, 0.5f, 0.999f},
                                {0xFFFFFFFF, 3.0f, -0.5f},
                                {0xFFFFFFFF, -1.0f, kInfinity},
                                {0xFF000000, kNaN, kNaN}};
    stack.addLinearGradientText(0, 1, 0.5f, 4, stops);
    const auto& gradient = record<GxLinearGradientProperty>(7);
    ASSERT_EQ(gradient.stopCount, 4);
    // 0.5 x 0.5 x 255 + 0.5 = 64.25.
    EXPECT_EQ(gradient.stops[0].color, 0x40345678u);
    EXPECT_EQ(gradient.stops[0].opacity, 0.5f);
    EXPECT_EQ(gradient.stops[0].position, 0.99f) << "two decimals, truncated";
    // The stop's opacity counts as given: 3 x 0.5 is clamped to 1.
    EXPECT_EQ(gradient.stops[1].color, 0xFFFFFFFFu);
    EXPECT_EQ(gradient.stops[1].opacity, 1.0f);
    EXPECT_EQ(gradient.stops[1].position, 0.0f);
    EXPECT_EQ(gradient.stops[2].color, 0x00FFFFFFu);
    EXPECT_EQ(gradient.stops[2].position, 1.0f);
    EXPECT_EQ(gradient.stops[3].color, 0u);
    EXPECT_EQ(gradient.stops[3].position, 0.0f);
    EXPECT_EQ(record<GxLinearGradientProperty>(7).scale, 1.0f);
    stack.addRadialGradientText(9, 1, -4, stops);
    EXPECT_EQ(record<GxRadialGradientProperty>(8).stopCount, 0);
    EXPECT_EQ(record<GxRadialGradientProperty>(8).scale, 2.0f);
    EXPECT_EQ(record<GxRadialGradientProperty>(8).angle, 0.0f);
    const std::vector<GxGradient> many(300);
    stack.addInnerGlowText(1, 0, 1, 300, many.data());
    EXPECT_EQ(record<GxInnerGlowProperty>(4).stopCount, 256);
}

TEST_F(GxEffectStack, MissingStopsAndPatternsAreRefused) {
    EXPECT_EQ(stack.addOuterGlowText(1, 0, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addInnerGlowText(1, 0, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addLinearGradientText(0, 1, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addRadialGradientText(1, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addPatternText(nullptr, 1, 1), -1);
    EXPECT_FALSE(stack.hasEffects());
    EXPECT_EQ(stack.addPatternText(&pattern, -1, 9), 0);
    EXPECT_EQ(record<GxPatternProperty>(11).scale, 0.0f);
    EXPECT_EQ(record<GxPatternProperty>(11).opacity, 1.0f);
}

TEST_F(GxEffectStack, RecordsOfAnotherEffectAreIgnored) {
    const GxTextProperty wrong(0, 1);
    EXPECT_EQ(stack.addEffect(10, &wrong), -1) << "no stroke without a stroke's record";
    EXPECT_EQ(stack.addEffect(10, nullptr), 0) << "but one without any";
    stack.initEffect(4, 4);
    EXPECT_EQ(stack.getMode(), 0u);
    const std::unique_ptr<char[]> key(stack.getMapKey());
    EXPECT_STREQ(key.get(), "");
}

}  // namespace
}  // namespace GxFontEffect
