// Renderers side by side and one after the other.
#include "scene/Renderer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>
#include <vector>

#include "support/Fonts.h"

namespace gxtext {
namespace {

using gxtest::fontPath;

const FontSource& latinFonts() {
    static const FontSource source =
        FontSource::files({fontPath(gxtest::kNotoSans), fontPath(gxtest::kNotoArabic)});
    return source;
}
const FontSource& otherFonts() {
    static const FontSource source =
        FontSource::files({fontPath(gxtest::kDejaVuSans), fontPath(gxtest::kNotoHebrew)});
    return source;
}

// Title `number` of a thread, in a look that follows from both.
Style styleOf(int number, int thread) {
    Style style;
    style.size = 20.0f + static_cast<float>(number % 7);
    style.bold = number % 3 == 0;
    style.color = Color{0xFF000000u | static_cast<uint32_t>(number * 4099 + thread * 77)};
    if (number % 2) style.effects.emplace_back(EffectType::kStroke);
    if (number % 5 == 0) style.effects.emplace_back(EffectType::kOuterShadow);
    if (number % 4 == 0) style.width = 120;
    return style;
}

std::string textOf(int number, int thread) {
    return "Title " + std::to_string(number) + " \u05D0\u0628 of " + std::to_string(thread);
}

std::vector<std::vector<uint32_t>> renderAll(int thread, int count) {
    Renderer renderer(thread % 2 ? latinFonts() : otherFonts());
    std::vector<std::vector<uint32_t>> pictures;
    for (int i = 0; i < count; i++) {
        pictures.push_back(renderer.render(styleOf(i, thread), textOf(i, thread)).pixels());
    }
    return pictures;
}

// Long runs set the count in the environment.
TEST(Renderer, ThreadsWithDifferentFontsAndStylesDoNotDisturbEachOther) {
    constexpr int kThreads = 8;
    const char* wanted = getenv("GXTEXT_TEST_TITLES");
    const int count = wanted ? atoi(wanted) : 40;
    std::vector<std::vector<std::vector<uint32_t>>> alone, together(kThreads);
    for (int thread = 0; thread < kThreads; thread++) alone.push_back(renderAll(thread, count));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; thread++) {
        threads.emplace_back([&, thread] { together[thread] = renderAll(thread, count); });
    }
    for (std::thread& thread : threads) thread.join();
    for (int thread = 0; thread < kThreads; thread++) {
        for (int i = 0; i < count; i++) {
            ASSERT_EQ(together[thread][i], alone[thread][i]) << "title " << i << " of " << thread;
        }
    }
}

TEST(Renderer, AMistakeLeavesItGoodForTheNextText) {
    Renderer renderer(latinFonts());
    const Style good = styleOf(5, 1);
    const std::vector<uint32_t> picture = renderer.render(good, "Good").pixels();
    const auto spoil = [&](auto change, const char* text) {
        Style style = good;
        change(style);
        EXPECT_THROW(renderer.render(style, text), Error);
        EXPECT_EQ(renderer.render(good, "Good").pixels(), picture);
    };
    const auto nothing = [](Style&) {};
    spoil([](Style& style) { style.font = "No Such Family"; }, "a");
    spoil([](Style& style) { style.font = "none.ttf"; }, "a");
    spoil([](Style& style) { style.effects.emplace_back(EffectType::kPattern).pattern = "no.png"; },
          "a");
    spoil([](Style& style) { style.padding = {60, 0, 60, 0}, style.width = 120; }, "a");
    spoil(nothing, "");
    spoil(nothing, "\xFF");
    spoil(nothing, "\u200B");                          // nothing to draw
    spoil(nothing, std::string(100000, 'M').c_str());  // a line beyond a mask
    spoil([](Style& style) { style.size = 4096; }, std::string(4000, '\n').c_str());
    EXPECT_THROW(renderer.render(good), TextError);  // no text in the style either
}

}  // namespace
}  // namespace gxtext
