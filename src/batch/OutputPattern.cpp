#include "batch/OutputPattern.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

#include "batch/RowFields.h"
#include "batch/Sha256.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

constexpr size_t kLongestName = 120;  // bytes; a few of them fit into the 255 of a file's name

std::string textOf(const ordered_json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string valueOf(const Row& row, const std::string& field) {
    if (field == "id") return row.id;
    if (field == "row") return std::to_string(row.number);
    if (field == "style" && !row.style.empty()) return row.style;
    for (const StyleSetting& setting : row.settings) {
        if (setting.path == field) return textOf(setting.value);
    }
    throw StyleError(
        "", {"$." + field, "the row does not have it, and the output's name needs it", ""});
}

}  // namespace

std::string safeFileName(std::string_view text) {
    std::string name(text);
    for (char& c : name) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        if (isControl || std::strchr("/\\:*?\"<>|", c)) c = '_';
    }
    if (name.empty()) return "_";
    if (name.front() == '.') name.front() = '_';
    if (name.size() <= kLongestName) return name;
    size_t end = kLongestName;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) end--;
    return name.substr(0, end) + "~" + Sha256().add(text).hex().substr(0, 8);
}

OutputPattern::OutputPattern(const std::string& pattern) {
    if (!isUtf8(pattern)) throw Error("the output's name is not valid UTF-8");
    std::string text;
    for (size_t i = 0; i < pattern.size(); i++) {
        const char c = pattern[i];
        const bool isBrace = c == '{' || c == '}';
        if (isBrace && i + 1 < pattern.size() && pattern[i + 1] == c)
            i++;
        else if (isBrace) {
            const size_t end = pattern.find('}', i);
            if (c == '}' || end == std::string::npos || end == i + 1) {
                throw Error("\"" + pattern +
                            "\" has a brace without its other one or without a "
                            "field; allowed: {id}, {row}, {FIELD}, and {{ or }} for a brace");
            }
            parts_.push_back({false, std::exchange(text, {})});
            parts_.push_back({true, pattern.substr(i + 1, end - i - 1)});
            i = end;
            continue;
        }
        text += c;
    }
    parts_.push_back({false, text});
}

std::string OutputPattern::nameOf(const Row& row) const {
    std::string name;
    for (const Part& part : parts_) {
        name += part.isField ? safeFileName(valueOf(row, part.text)) : part.text;
    }
    return name;
}

std::array<uint64_t, 2> nameKey(const std::string& name) {
    const std::string normal = std::filesystem::path(name).lexically_normal().string();
    const Sha256::Digest digest = Sha256().add(normal).digest();
    std::array<uint64_t, 2> key;
    std::memcpy(key.data(), digest.data(), sizeof(key));
    return key;
}

std::optional<uint64_t> OutputNames::add(const std::string& name, uint64_t row) {
    const auto [place, isNew] = rows_.try_emplace(nameKey(name), row);
    return isNew ? std::nullopt : std::optional(place->second);
}

}  // namespace gxtext
