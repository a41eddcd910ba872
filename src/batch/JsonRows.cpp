#include "batch/JsonRows.h"

#include <unordered_set>
#include <utility>

#include "batch/RowFields.h"
#include "style/JsonTree.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

[[noreturn]] void failTwice(const std::string& path) {
    throw StyleError("", {path, "given twice", ""});
}

ordered_json jsonOf(const JsonValue& value, const std::string& path) {
    if (const auto* boolean = value.as<bool>()) return *boolean;
    if (const auto* number = value.as<JsonNumber>()) return ordered_json::parse(number->text);
    if (const auto* string = value.as<std::string>()) return *string;
    if (const auto* list = value.as<JsonValue::Array>()) {
        ordered_json result = ordered_json::array();
        for (const JsonValue& item : *list) {
            result.push_back(jsonOf(item, path + "[" + std::to_string(result.size()) + "]"));
        }
        return result;
    }
    const auto* object = value.as<JsonValue::Object>();
    if (!object) return nullptr;
    ordered_json result = ordered_json::object();
    for (const JsonMember& member : *object) {
        const std::string here = path + pathStep(member.name);
        if (result.contains(member.name)) failTwice(here);
        result[member.name] = jsonOf(member.value, here);
    }
    return result;
}

void readObject(std::string_view line, Row& row) {
    const JsonValue value = parseJson(line, "");
    const auto* object = value.as<JsonValue::Object>();
    if (!object) throw StyleError("", {"$", "a row is a JSON object", ""});
    std::unordered_set<std::string_view> names;
    for (const JsonMember& member : *object) {
        const std::string path = std::string("$").append(pathStep(member.name));
        if (!names.insert(member.name).second) failTwice(path);
        addField(row, member.name, jsonOf(member.value, path));
    }
}

}  // namespace

void JsonRows::feed(std::string_view bytes, const Sink& sink) {
    for (size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        append(bytes.substr(0, end));
        endLine(sink);
        bytes.remove_prefix(end + 1);
    }
    append(bytes);
}

void JsonRows::finish(const Sink& sink) {
    endLine(sink);
}

void JsonRows::append(std::string_view bytes) {
    isTooLong_ = isTooLong_ || line_.size() + bytes.size() > kMaxRowBytes;
    if (!isTooLong_) line_ += bytes;
}

void JsonRows::endLine(const Sink& sink) {
    std::string_view line = line_;
    if (rows_ == 0 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
    const bool isEmpty = line.find_first_not_of(" \t\r") == std::string_view::npos;
    if (!isEmpty || isTooLong_) {
        Row row = emptyRow(++rows_);
        try {
            if (isTooLong_) {
                throw StyleError(
                    "", {"$", "longer than " + std::to_string(kMaxRowBytes) + " bytes", ""});
            }
            readObject(line, row);
        } catch (const StyleError& error) {
            row.error = {error.problems().front().path, error.problems().front().reason};
        }
        sink(std::move(row));
    }
    line_.clear();
    isTooLong_ = false;
}

}  // namespace gxtext
