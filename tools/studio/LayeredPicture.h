// Text layers of layered picture files, as the Python package reads them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "style/Error.h"

namespace gxstudio {

// What the reader prints of a PSD or PSB file. It runs as a process of its own, which ends with
// this one and has this one's limits; `fonts` is as gxtool::fontsAt() takes it. Throws
// gxtext::Error with the reader's words for a file that it cannot read, and where there is no
// reader.
std::string readLayers(const std::string& file, const std::vector<std::string>& fonts);

// [{"name", "style", "losses": [{"path", "kind", "reason"}]}] of what the reader printed, from the
// topmost layer, each style in its canonical form. Throws gxtext::Error for anything else.
nlohmann::ordered_json layersOf(const std::string& printed);

}  // namespace gxstudio
