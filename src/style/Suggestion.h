// What someone who wrote an unknown name may have meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "GxExport.h"

namespace gxtext {

// The name that is near what was given: few letters differ, or it holds the whole of that, in
// either case. Null when none is.
GXTEXT_API const std::string_view* nearestName(std::string_view given,
                                               const std::vector<std::string_view>& names);

// "size, color".
std::string joined(const std::vector<std::string_view>& names);

// "; did you mean \"size\"?", or "; allowed: " and the names when none is near.
GXTEXT_API std::string suggestion(std::string_view given,
                                  const std::vector<std::string_view>& names);

}  // namespace gxtext
