// What writers of the format share.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "style/FieldTable.h"

namespace gxtext {

// A number as JSON prints it shortest: 6 for 6.0f, 0.1 for 0.1f. What is not finite becomes null.
nlohmann::ordered_json shortestNumber(float value);

// What a file gets that leaves a field out, as the file would say it; null for nothing.
nlohmann::ordered_json initialJson(const Initial& initial);

// The style as a file says it, unchecked.
nlohmann::ordered_json styleJson(const Style& style);

// Its text. Throws StyleError for strings that are no UTF-8.
std::string textOf(const nlohmann::ordered_json& json);

}  // namespace gxtext
