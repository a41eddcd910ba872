// The measured pictures in the language of those that draw SVG.
#pragma once

#include <string>

#include "TitlePicture.h"

namespace gxbench {

// A document of the picture's size: a filter for each blur, the outline as a stroke, squares drawn
// in place of a pattern's file.
std::string svgOf(const TitlePicture& picture);

}  // namespace gxbench
