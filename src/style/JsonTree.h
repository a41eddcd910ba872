// JSON as it stands in a text: members in their order, with repetitions, numbers as written.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace gxtext {

struct JsonMember;

struct JsonNumber {
    double value = 0;
    std::string text;  // as written; without sign and leading zeros where it makes no difference

    // Without a fraction or an exponent.
    bool isWhole() const { return text.find_first_of(".eE") == std::string::npos; }
};

struct JsonValue {
    using Array = std::vector<JsonValue>;
    using Object = std::vector<JsonMember>;

    std::variant<std::monostate, bool, JsonNumber, std::string, Array, Object> value;

    template <typename T>
    const T* as() const {
        return std::get_if<T>(&value);
    }
};

struct JsonMember {
    std::string name;
    JsonValue value;
};

// Parses UTF-8 in time proportional to its length. Throws StyleError, with `source` for the name
// of the text, for wrong JSON, a NUL byte, a number too large for a double, values nested deeper
// than Style::kMaxDepth and texts longer than Style::kMaxBytes.
JsonValue parseJson(std::string_view text, const std::string& source);

// A member's step in a JSON path: ".size", or "[\"a b\"]" for a name that is not a word; long ones
// are shortened.
std::string pathStep(std::string_view name);

// The value as the text has it, shortened for a message; lists and objects are not spelled out.
std::string shown(const JsonValue& value);

}  // namespace gxtext
