// The measured title as Pillow draws it, in an interpreter inside this process.
#pragma once

#include <functional>
#include <string>

namespace gxbench {

// A run draws `text` in `size` pixels on `width` x `height`: a soft shadow, a glow, a stroke of
// `stroke` pixels and the fill, composited in that order. `baseline` and `left` place it. Empty,
// with a line to the error stream, where the interpreter does not find Pillow.
struct PillowTitle {
    std::string text;
    std::string font;  // path
    int size = 0;
    int width = 0;
    int height = 0;
    int left = 0;
    int baseline = 0;
    int stroke = 0;
    int shadowRadius = 0;
    int shadowDistance = 0;
    int glowRadius = 0;
};
std::function<void()> pillowRun(const PillowTitle& title);

}  // namespace gxbench
