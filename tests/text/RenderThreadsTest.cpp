// Text objects on threads of their own, over the fonts and caches that they share.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "text/TextFixture.h"

namespace GxFontEffect {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 5;

// One widget with every effect that Java can add, drawn from scratch.
class Widget : public TextScene {
public:
    Widget() { prepare(); }

    // With a font file of its own, or the system's fonts alone.
    gxtest::Image draw(const std::wstring& string, bool ownFont) {
        if (ownFont) text.SetFont(gxtest::fontPath(gxtest::kDejaVuSans).c_str());
        GxEffect* effect = text.GetEffect();
        const GxGradient stops[] = {{0xFFFFD54F, 1, 0}, {0xFFE53935, 1, 1}};
        effect->addStrokeText(3, 0xFFFFFFFF, 1, 0, GxStrokeProperty::kOutside);
        effect->addOuterShadowText(120, 5, 4, 0xFF000000, 0.6f);
        effect->addInnerShadowText(120, 3, 3, 0xFF000000, 0.5f);
        effect->addOuterGlowText(6, 0xFF80D8FF, 0.8f, 0, nullptr);
        effect->addLinearGradientText(90, 1, 1, 2, stops);
        setLines({string});
        return render(160, 70);
    }
};

const std::wstring kStrings[] = {
    L"Glow", L"\x0645\x0631\x062D", L"\x0928\x092E", L"\x4E2D\x6587", L"\xD55C\xAE00",
};

// How long to go on: GXTEXT_TEST_SECONDS from the environment, for a long run; else some rounds.
class Duration {
public:
    bool over(int round) const {
        if (seconds_ == 0) return round >= kRounds;
        return std::chrono::steady_clock::now() - start_ > std::chrono::seconds(seconds_);
    }

private:
    static int wanted() {
        const char* given = std::getenv("GXTEXT_TEST_SECONDS");
        return given ? std::atoi(given) : 0;
    }

    int seconds_ = wanted();
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// The threads begin together, with fonts that nobody has loaded yet.
TEST(RenderThreads, ObjectsOnDifferentThreadsDrawAsOneAlone) {
    constexpr size_t kCases = 2 * std::size(kStrings);
    const auto draw = [](size_t which) {
        return Widget().draw(kStrings[which / 2], which % 2 != 0);
    };
    const Duration duration;
    std::vector<std::map<size_t, gxtest::Image>> first(kThreads);
    std::atomic<int> different{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (size_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; !duration.over(round); ++round) {
                const size_t which = (t + static_cast<size_t>(round)) % kCases;
                const gxtest::Image image = draw(which);
                if (!(first[t].emplace(which, image).first->second == image)) ++different;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(different, 0);
    for (size_t which = 0; which < kCases; ++which) {
        const gxtest::Image alone = draw(which);
        for (const auto& images : first) {
            const auto drawn = images.find(which);
            EXPECT_TRUE(drawn == images.end() || drawn->second == alone) << which;
        }
    }
}

}  // namespace
}  // namespace GxFontEffect
