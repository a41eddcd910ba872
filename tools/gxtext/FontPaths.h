// Fonts as a command line names them.
#pragma once

#include <string>
#include <vector>

#include "scene/FontSource.h"

namespace gxtool {

// Those installed where `paths` is empty; else those of a folder, or of files. Throws FontError.
gxtext::FontSource fontsAt(const std::vector<std::string>& paths);

}  // namespace gxtool
