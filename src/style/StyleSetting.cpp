#include "style/StyleSetting.h"

#include <charconv>

#include "style/StyleJson.h"
#include "style/StyleReader.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

[[noreturn]] void fail(std::string_view path, const std::string& reason) {
    throw StyleError("", {std::string(path), reason, ""});
}

// The steps of "effects[0].size", taken from the front.
class PathReader {
public:
    explicit PathReader(std::string_view path) : path_(path), rest_(path) {
        if (rest_.starts_with("$.")) rest_.remove_prefix(2);
    }

    bool atEnd() const { return rest_.empty(); }

    // Goes one step on, making the member or the next element that is not there yet.
    ordered_json& step(ordered_json& from) {
        if (rest_.front() == '[') return element(from, takeIndex());
        if (rest_.front() == '.' && rest_.size() < path_.size()) rest_.remove_prefix(1);
        const size_t length = std::min(rest_.find_first_of(".["), rest_.size());
        if (length == 0) fail(path_, "this is not a path like effects[0].size");
        const std::string name(rest_.substr(0, length));
        rest_.remove_prefix(length);
        if (from.is_null()) from = ordered_json::object();
        if (!from.is_object()) fail(path_, "there is no object at this place");
        return from[name];
    }

private:
    size_t takeIndex() {
        const size_t end = rest_.find(']');
        size_t index = 0;
        const char* const digits = rest_.data() + 1;
        const char* const last = rest_.data() + std::min(end, rest_.size());
        const auto [next, error] = std::from_chars(digits, last, index);
        if (end == std::string_view::npos || error != std::errc() || next != last) {
            fail(path_, "this is not a path like effects[0].size");
        }
        rest_.remove_prefix(end + 1);
        return index;
    }

    ordered_json& element(ordered_json& from, size_t index) const {
        if (from.is_null()) from = ordered_json::array();
        if (!from.is_array()) fail(path_, "there is no list at this place");
        if (index > from.size()) {
            fail(path_, "the list has " + std::to_string(from.size()) +
                            (from.size() == 1 ? " entry" : " entries"));
        }
        if (index == from.size()) from.push_back(nullptr);
        return from[index];
    }

    std::string_view path_;
    std::string_view rest_;
};

// Without the fields that are null.
void removeNulls(ordered_json& json) {
    for (auto it = json.begin(); it != json.end();) {
        if (json.is_object() && it->is_null()) {
            it = json.erase(it);
            continue;
        }
        if (it->is_structured()) removeNulls(*it);
        ++it;
    }
}

}  // namespace

Style withSettings(const Style& style, std::span<const StyleSetting> settings) {
    ordered_json document = styleJson(style);
    for (const StyleSetting& setting : settings) {
        if (setting.path.empty()) fail(setting.path, "the path is empty");
        ordered_json* target = &document;
        for (PathReader reader(setting.path); !reader.atEnd();) target = &reader.step(*target);
        *target = setting.value;
    }
    removeNulls(document);
    return readStyle(textOf(document), "", style.source);
}

Style Style::with(std::string_view path, std::string_view value) const {
    ordered_json parsed = ordered_json::parse(value, nullptr, false);
    if (parsed.is_discarded()) parsed = ordered_json(value);
    const StyleSetting setting{std::string(path), std::move(parsed)};
    return withSettings(*this, {&setting, 1});
}

}  // namespace gxtext
