// Styles as the program gets them: from files and standard input.
#pragma once

#include <string>

#include "style/Style.h"

namespace gxtool {

using gxtext::Align;
using gxtext::Color;
using gxtext::Style;

// Reads and parses a style file; "-" is standard input, whose relative paths start in the working
// folder. Throws gxtext::Error when it cannot be read, gxtext::StyleError when it is no style.
Style loadStyle(const std::string& file);

}  // namespace gxtool
