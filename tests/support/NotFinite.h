// What a number may be that is none.
#pragma once

#include <limits>

namespace gxtest {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

}  // namespace gxtest
