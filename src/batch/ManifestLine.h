// The lines of a manifest.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "batch/Row.h"
#include "scene/Arrangement.h"

namespace gxtext {

// {"left", "top", "right", "bottom"}
nlohmann::ordered_json boxJson(const Box& box);
// Where a line lies in its picture and what it says.
nlohmann::ordered_json lineJson(const Line& line);
// ["U+0041", "U+1F600"]
nlohmann::ordered_json codePointsJson(const std::vector<char32_t>& characters);

// One JSON object without line breaks; "row" first.
std::string manifestLine(uint64_t row, const std::string& id, const std::string& output,
                         const nlohmann::ordered_json& fields);
// The line of a row without a picture; `output` may be empty.
std::string errorLine(uint64_t row, const std::string& id, const std::string& output,
                      const RowError& error);

}  // namespace gxtext
