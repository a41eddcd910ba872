// Reads style files: JSON, checked field by field.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Style.h"

namespace gxtool {

// Parses `json` (UTF-8). `name` is what messages call the file, `folder` what relative paths in it
// start from. Throws ToolError whose message holds the name, the JSON path of the offending value,
// what is wrong and what is allowed: "style.json: $.effects[2].size: 140 is out of range 0-100".
Style parseStyle(std::string_view json, const std::string& name,
                 const std::filesystem::path& folder);

// Reads and parses a file; "-" reads standard input and resolves paths against the working folder.
Style loadStyle(const std::string& file);

// Field names that are accepted at the top level and in an effect of that type.
std::vector<std::string_view> styleFieldNames();
std::vector<std::string_view> effectFieldNames(EffectType type);

}  // namespace gxtool
