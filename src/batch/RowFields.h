// What both forms of rows share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "batch/Row.h"

namespace gxtext {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isUtf8(const std::string& text);

// A row without fields.
Row emptyRow(uint64_t number);
// Puts a field where it belongs, or notes what is wrong with it.
void addField(Row& row, std::string_view name, nlohmann::ordered_json value);

}  // namespace gxtext
