// From JSON to a style.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "style/Style.h"

namespace gxtext {

// Style::fromJson() with a name of its own for messages.
Style readStyle(std::string_view json, const std::string& name,
                const std::filesystem::path& source);

}  // namespace gxtext
