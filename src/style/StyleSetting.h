// Values of a style, set by their paths.
#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "style/Style.h"

namespace gxtext {

// One value and where it goes, as Style::with() has them.
struct StyleSetting {
    std::string path;
    nlohmann::ordered_json value;
};

// A copy with all of them set, one after the other, and checked once. Throws StyleError.
Style withSettings(const Style& style, std::span<const StyleSetting> settings);

}  // namespace gxtext
