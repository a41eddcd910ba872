#include "style/JsonTree.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "style/Style.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

constexpr size_t kLongestShown = 40;

// Cut between characters.
std::string shortened(std::string text, size_t longest) {
    if (text.size() <= longest) return text;
    size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end--;
    text.resize(end);
    return text + "...";
}

std::string lineAndColumn(std::string_view text, size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const size_t start = before.rfind('\n') + 1;  // 0 without a line break
    return "line " + std::to_string(line) + ", column " + std::to_string(offset - start + 1);
}

// Builds the tree from the parser's events. The stack holds what is open, with the member or
// element that is being read; a container does not grow while one inside it is open, so that the
// pointers stay good.
class TreeBuilder {
public:
    explicit TreeBuilder(const std::string& source) : source_(source) {}

    JsonValue root;

    bool null() { return add(std::monostate()); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(ordered_json::number_integer_t value) { return addNumber(value); }
    bool number_unsigned(ordered_json::number_unsigned_t value) { return addNumber(value); }
    bool number_float(ordered_json::number_float_t value, const std::string& text) {
        return add(JsonNumber{value, text});
    }
    bool string(std::string& value) { return add(std::move(value)); }
    bool binary(ordered_json::binary_t& /*value*/) { return false; }  // not in JSON
    bool start_object(size_t /*count*/) { return open(JsonValue::Object()); }
    bool start_array(size_t /*count*/) { return open(JsonValue::Array()); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(std::string& name) {
        std::get<JsonValue::Object>(stack_.back()->value).push_back({std::move(name), {}});
        return true;
    }
    // `what` begins with "[json.exception.parse_error.101] ".
    bool parse_error(size_t /*offset*/, const std::string& token,
                     const ordered_json::exception& error) {
        constexpr size_t kLongestReason = 300;
        if (error.id == kNumberOverflow) {
            fail(shortened(token, kLongestShown) + " is too large for a number");
        }
        const std::string what = error.what();
        const size_t bracket = what.find("] ");
        fail(shortened(bracket == std::string::npos ? what : what.substr(bracket + 2),
                       kLongestReason));
    }

private:
    static constexpr int kNumberOverflow = 406;

    template <typename T>
    bool addNumber(T value) {
        return add(JsonNumber{static_cast<double>(value), std::to_string(value)});
    }
    template <typename T>
    bool add(T&& value) {
        next().value = std::forward<T>(value);
        return true;
    }
    template <typename T>
    bool open(T&& container) {
        if (stack_.size() == Style::kMaxDepth) {
            fail("nested deeper than " + std::to_string(Style::kMaxDepth));
        }
        JsonValue& value = next();
        value.value = std::forward<T>(container);
        stack_.push_back(&value);
        return true;
    }
    bool close() {
        stack_.pop_back();
        return true;
    }
    // Where the next value goes.
    JsonValue& next() {
        if (stack_.empty()) return root;
        if (auto* list = std::get_if<JsonValue::Array>(&stack_.back()->value)) {
            return list->emplace_back();
        }
        return std::get<JsonValue::Object>(stack_.back()->value).back().value;
    }
    // Of the value that was being read; where a container has just begun or a member is complete,
    // the parser does not say what it looked for.
    std::string path() const {
        std::string text = "$";
        for (size_t i = 0; i < stack_.size(); i++) {
            const bool isInnermost = i + 1 == stack_.size();
            if (const auto* list = stack_[i]->as<JsonValue::Array>()) {
                const size_t index = isInnermost ? list->size() : list->size() - 1;
                text.append("[").append(std::to_string(index)).append("]");
            } else if (const auto& object = std::get<JsonValue::Object>(stack_[i]->value);
                       !object.empty()) {
                text += pathStep(object.back().name);
            }
        }
        return text;
    }
    [[noreturn]] void fail(std::string reason) const {
        throw StyleError(source_, {path(), std::move(reason), ""});
    }

    const std::string& source_;
    std::vector<JsonValue*> stack_;
};

}  // namespace

JsonValue parseJson(std::string_view text, const std::string& source) {
    if (text.size() > Style::kMaxBytes) {
        const std::string most = std::to_string(Style::kMaxBytes) + " bytes";
        throw StyleError(source, {"$", "the style is longer than " + most, most});
    }
    // The parser takes it for the end.
    if (const size_t nul = text.find('\0'); nul != std::string_view::npos) {
        throw StyleError(source, {"$", "a NUL byte at " + lineAndColumn(text, nul), ""});
    }
    TreeBuilder builder(source);
    ordered_json::sax_parse(text, &builder);
    return std::move(builder.root);
}

std::string pathStep(std::string_view name) {
    const bool isWord = !name.empty() && name.size() <= kLongestShown &&
                        std::all_of(name.begin(), name.end(), [](char c) {
                            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                   (c >= '0' && c <= '9') || c == '_' || c == '$';
                        });
    if (isWord) return "." + std::string(name);
    return std::string("[").append(shown({std::string(name)})).append("]");
}

std::string shown(const JsonValue& value) {
    if (const auto* list = value.as<JsonValue::Array>()) return list->empty() ? "[]" : "[...]";
    if (const auto* object = value.as<JsonValue::Object>()) return object->empty() ? "{}" : "{...}";
    std::string text = "null";
    if (const auto* boolean = value.as<bool>()) text = *boolean ? "true" : "false";
    if (const auto* number = value.as<JsonNumber>()) text = number->text;
    if (const auto* string = value.as<std::string>()) {
        text = ordered_json(*string).dump(-1, ' ', true, ordered_json::error_handler_t::replace);
    }
    return shortened(std::move(text), kLongestShown);
}

}  // namespace gxtext
