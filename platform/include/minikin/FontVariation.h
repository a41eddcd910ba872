// One axis setting of a variable font.
#pragma once

#include <cstdint>

namespace minikin {

typedef uint32_t AxisTag;

struct FontVariation {
    FontVariation(AxisTag tag, float axisValue) : axisTag(tag), value(axisValue) {}

    AxisTag axisTag;
    float value;
};

}  // namespace minikin
