// The row of titles on two threads, against one that draws them all (the plain form).
#include "ThreadBench.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Bench.h"
#include "TitlePicture.h"
#include "scene/FontSource.h"
#include "scene/Renderer.h"

namespace gxbench {

std::function<void()> titlesOnThreads(int threads) {
    const TitlePicture picture = titlePicture("title", GXBENCH_FONT, 0, 0.5f);
    const auto fonts = gxtext::FontSource::files({picture.fontFile});
    const auto renderers = std::make_shared<std::vector<gxtext::Renderer>>();
    for (int i = 0; i < threads; ++i) renderers->emplace_back(fonts);
    return [=, style = picture.style] {
        const auto draw = [&](int thread) {
            for (int i = thread; i < kThreadTitles; i += threads) {
                (*renderers)[static_cast<size_t>(thread)].render(style,
                                                                 "Title " + std::to_string(i));
            }
        };
        std::vector<std::thread> others;
        for (int i = 1; i < threads; ++i) others.emplace_back(draw, i);
        draw(0);
        for (std::thread& other : others) other.join();
    };
}

void addThreadRows() {
    constexpr double kTarget = 1.8;
    if (std::thread::hardware_concurrency() < 2) return;
    addRow({"titles on two threads / on one", "", {kTarget, 0}, 0, [] {
                return Contenders{{}, titlesOnThreads(2), titlesOnThreads(1)};
            }});
}

}  // namespace gxbench
