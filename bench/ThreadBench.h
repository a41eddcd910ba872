// Titles on several threads.
#pragma once

#include <functional>

namespace gxbench {

// Draws kThreadTitles titles with stroke, shadow and glow, shared out among that many threads, each
// with a renderer of its own; the fonts are one source.
constexpr int kThreadTitles = 1920;
std::function<void()> titlesOnThreads(int threads);

}  // namespace gxbench
