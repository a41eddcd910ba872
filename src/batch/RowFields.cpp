#include "batch/RowFields.h"

#include <utility>

#include "style/JsonTree.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

// A string that is not empty, or a number as it is written.
std::string nameOf(const ordered_json& value) {
    if (value.is_string()) return value.get<std::string>();
    return value.is_number() ? value.dump() : std::string();
}

}  // namespace

bool isUtf8(const std::string& text) {
    try {
        return !ordered_json(text).dump().empty();
    } catch (const ordered_json::type_error&) {
        return false;
    }
}

Row emptyRow(uint64_t number) {
    Row row;
    row.number = number;
    row.id = std::to_string(number);
    return row;
}

void addField(Row& row, std::string_view name, ordered_json value) {
    const bool isId = name == "id";
    if (!isId && name != "style") {
        row.settings.push_back({std::string(name), std::move(value)});
        return;
    }
    std::string text = nameOf(value);
    if (text.empty() || (!isId && !value.is_string())) {
        row.error = {std::string("$").append(pathStep(name)),
                     isId ? "not a string or a number" : "not the name of a style file"};
        return;
    }
    (isId ? row.id : row.style) = std::move(text);
}

}  // namespace gxtext
