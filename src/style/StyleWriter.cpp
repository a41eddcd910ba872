// From a style to JSON.
#include <cmath>
#include <type_traits>

#include "style/StyleJson.h"
#include "style/StyleReader.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

template <typename T>
ordered_json writeObject(const T& object);
template <>
ordered_json writeObject(const Effect& effect);
template <>
ordered_json writeObject(const Background& background);

ordered_json write(float value) {
    return shortestNumber(value);
}
ordered_json write(int value) {
    return value;
}
ordered_json write(bool value) {
    return value;
}
ordered_json write(Color color) {
    return formatColor(color);
}
ordered_json write(const std::string& text) {
    return text;
}
ordered_json write(const Background& background);
template <typename T>
ordered_json write(const std::optional<T>& value) {
    return value ? write(*value) : ordered_json();
}
ordered_json write(const Padding& p) {
    if (p.left == p.top && p.left == p.right && p.left == p.bottom) return p.left;
    return ordered_json::array({p.left, p.top, p.right, p.bottom});
}
template <typename T>
ordered_json write(const std::vector<T>& list) {
    if (list.empty()) return nullptr;
    ordered_json array = ordered_json::array();
    for (const T& element : list) array.push_back(writeObject(element));
    return array;
}

ordered_json write(const Fill& fill) {
    return fill.effects.empty() ? write(fill.color) : writeObject(fill.effects.front());
}

ordered_json write(const Background& background) {
    const bool isPlain = background == Background(background.color);
    return isPlain ? write(background.color) : writeObject(background);
}

// A value without a name is one that no file can hold.
template <typename T>
ordered_json write(const Choice<T>& choice, const T& object) {
    const auto value = static_cast<size_t>(choice.get(object));
    return value < choice.names.size() ? ordered_json(choice.names[value]) : ordered_json(value);
}

template <typename T>
ordered_json writeField(const Field<T>& field, const T& object) {
    return std::visit(
        [&](const auto& target) -> ordered_json {
            using Kind = std::decay_t<decltype(target)>;
            if constexpr (std::is_same_v<Kind, std::monostate>) {
                return nullptr;
            } else if constexpr (std::is_same_v<Kind, Choice<T>>) {
                return write(target, object);
            } else {
                return write(object.*target);
            }
        },
        field.target);
}

// null stands for "not there": no value can be.
template <typename T>
void writeFieldInto(ordered_json& json, const Field<T>& field, const T& object) {
    if (field.target.index() == 0) return;  // no setting
    const ordered_json value = writeField(field, object);
    const bool isLeftOut = !field.required && value == initialJson(field.initial);
    if (!isLeftOut) json[std::string(field.name)] = value;
}

template <>
ordered_json writeObject(const Style& style) {
    ordered_json json = ordered_json::object();
    for (const Field<Style>& field : styleFields()) writeFieldInto(json, field, style);
    return json;
}
template <>
ordered_json writeObject(const Background& background) {
    ordered_json json = ordered_json::object();
    for (const auto& field : backgroundFields()) writeFieldInto(json, field, background);
    return json;
}
template <>
ordered_json writeObject(const Stop& stop) {
    ordered_json json = ordered_json::object();
    for (const Field<Stop>& field : stopFields()) writeFieldInto(json, field, stop);
    return json;
}
template <>
ordered_json writeObject(const Effect& effect) {
    ordered_json json = {{"type", effectName(effect.type)}};
    for (const Field<Effect>* field : effectFields(effect.type)) {
        writeFieldInto(json, *field, effect);
    }
    return json;
}

}  // namespace

ordered_json shortestNumber(float value) {
    if (!std::isfinite(value)) return nullptr;
    if (std::trunc(value) == value && std::fabs(value) < 1e9f) return static_cast<int>(value);
    return ordered_json::parse(shortText(static_cast<double>(value)));
}

ordered_json initialJson(const Initial& initial) {
    return std::visit(
        [](const auto& value) -> ordered_json {
            using Kind = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<Kind, std::monostate>) {
                return nullptr;
            } else if constexpr (std::is_same_v<Kind, double>) {
                return shortestNumber(static_cast<float>(value));
            } else if constexpr (std::is_same_v<Kind, Color>) {
                return formatColor(value);
            } else {
                return value;
            }
        },
        initial);
}

ordered_json styleJson(const Style& style) {
    return writeObject(style);
}

std::string textOf(const ordered_json& json) {
    try {
        return json.dump(2) + "\n";
    } catch (const ordered_json::exception&) {
        throw StyleError("", {"$", "a string of the style is not valid UTF-8", "UTF-8"});
    }
}

std::string Style::toJson() const {
    std::string text = textOf(styleJson(*this));
    readStyle(text, "", source);  // what it refuses cannot be written
    return text;
}

}  // namespace gxtext
