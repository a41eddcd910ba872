#include "style/StyleReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "style/FieldTable.h"
#include "style/JsonTree.h"
#include "style/Suggestion.h"

namespace gxtext {

namespace {

// Where a value stands. Spelled out for a message only: a text of a megabyte has many places.
struct Place {
    const Place* parent = nullptr;
    std::optional<std::string_view> name{};  // of a member; an element has an index
    size_t index = 0;

    Place member(std::string_view of) const { return {this, of, 0}; }
    Place element(size_t of) const { return {this, {}, of}; }
    std::string path() const {
        if (!parent) return "$";
        std::string text = parent->path();
        if (name) return text.append(pathStep(*name));
        return text.append("[").append(std::to_string(index)).append("]");
    }
};

std::string inQuotes(std::string_view name) {
    std::string text("\"");
    text.append(name).append("\"");
    return text;
}

constexpr const char* kFillNames = "linearGradient, radialGradient, pattern";

class Reader {
public:
    explicit Reader(std::string name) : name_(std::move(name)) {}

    void read(const JsonValue& document, Style& style) {
        readObject(document, Place(), pointersTo(styleFields()), style);
        if (total_ > 0) throw StyleError(name_, std::move(problems_), total_);
    }

private:
    template <typename T>
    using Rows = std::vector<const Field<T>*>;

    template <typename T>
    static Rows<T> pointersTo(const std::vector<Field<T>>& fields) {
        Rows<T> rows;
        for (const Field<T>& field : fields) rows.push_back(&field);
        return rows;
    }

    bool isFull() const { return problems_.size() == StyleError::kMaxProblems; }

    void report(const Place& place, std::string reason, std::string allowed = {}) {
        if (!isFull()) problems_.push_back({place.path(), std::move(reason), std::move(allowed)});
        total_++;
    }
    void reportOther(const JsonValue& value, const Place& place, const std::string& wanted,
                     const std::string& allowed) {
        report(place, shown(value) + " is not " + wanted, allowed);
    }
    // `names` lists what is allowed; only asked for what will be shown.
    template <typename Names>
    void reportUnknown(const Place& place, const std::string& reason, std::string_view given,
                       Names names) {
        if (isFull()) return report(place, reason);
        report(place, reason + suggestion(given, names()), joined(names()));
    }

    // `rows` of one name are those of one object: no two apply to it.
    template <typename T>
    void readObject(const JsonValue& value, const Place& place, const Rows<T>& rows, T& object) {
        const auto* members = value.as<JsonValue::Object>();
        if (!members) return reportOther(value, place, "an object", "an object");
        std::unordered_set<std::string_view> seen;
        for (const auto& [name, member] : *members) {
            const Place here = place.member(name);
            if (!seen.insert(name).second) {
                report(here, "the field is given twice");
                continue;
            }
            const auto row = std::find_if(rows.begin(), rows.end(),
                                          [&n = name](auto* field) { return field->name == n; });
            if (row == rows.end()) {
                reportUnknown(here, "unknown field", name, [&] {
                    std::vector<std::string_view> names;
                    for (const auto* field : rows) names.push_back(field->name);
                    return names;
                });
            } else {
                readField(member, here, **row, object);
            }
        }
        for (const auto* field : rows) {
            if (field->required && !seen.contains(field->name)) {
                report(place, inQuotes(field->name) + " is missing", std::string(field->name));
            }
        }
    }

    template <typename T>
    void readField(const JsonValue& value, const Place& place, const Field<T>& field, T& object) {
        std::visit([&](const auto& target) { readInto(value, place, field, target, object); },
                   field.target);
    }

    // One overload for each kind of target.

    // "$schema"; the type of an effect has been read before.
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  std::monostate /*target*/, T& /*object*/) {
        if (!value.as<std::string>()) reportOther(value, place, "a string", "a string");
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field,
                  float T::*target, T& object) {
        if (const auto number = readNumber(value, place, field.range, false)) {
            object.*target = static_cast<float>(*number);
        }
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field, int T::*target,
                  T& object) {
        if (const auto number = readNumber(value, place, field.range, true)) {
            object.*target = static_cast<int>(*number);
        }
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field,
                  std::optional<int> T::*target, T& object) {
        if (const auto number = readNumber(value, place, field.range, true)) {
            object.*target = static_cast<int>(*number);
        }
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  bool T::*target, T& object) {
        const auto* flag = value.as<bool>();
        if (!flag) return reportOther(value, place, "true or false", "true, false");
        object.*target = *flag;
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  Color T::*target, T& object) {
        if (const auto color = readColor(value, place)) object.*target = *color;
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  std::optional<Color> T::*target, T& object) {
        if (const auto color = readColor(value, place)) object.*target = *color;
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field,
                  std::string T::*target, T& object) {
        if (auto text = readString(value, place, field)) object.*target = std::move(*text);
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field,
                  std::optional<std::string> T::*target, T& object) {
        if (auto text = readString(value, place, field)) object.*target = std::move(*text);
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  const Choice<T>& choice, T& object) {
        if (const auto* name = value.as<std::string>()) {
            const auto found = std::find(choice.names.begin(), choice.names.end(), *name);
            if (found != choice.names.end()) {
                return choice.set(object, static_cast<int>(found - choice.names.begin()));
            }
        }
        std::string list;
        for (const std::string_view name : choice.names) {
            list.append(list.empty() ? "" : ", ").append(inQuotes(name));
        }
        reportOther(value, place, "one of " + list, list);
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& field,
                  Padding T::*target, T& object) {
        std::array<int, 4> sides{};
        const auto readSide = [&](const JsonValue& side, const Place& at) {
            const auto number = readNumber(side, at, field.range, true);
            return number ? static_cast<int>(*number) : 0;
        };
        if (const auto* list = value.as<JsonValue::Array>()) {
            const std::string wanted = "4 entries: left, top, right, bottom";
            if (list->size() != sides.size()) {
                return report(place, "a list of padding has " + wanted, wanted);
            }
            for (size_t i = 0; i < sides.size(); i++) {
                sides[i] = readSide((*list)[i], place.element(i));
            }
        } else {
            sides.fill(readSide(value, place));
        }
        object.*target = {sides[0], sides[1], sides[2], sides[3]};
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  std::vector<Stop> T::*target, T& object) {
        static const Rows<Stop> rows = pointersTo(stopFields());
        const std::string allowed = "1-" + std::to_string(kMaxStops);
        const auto* list = value.as<JsonValue::Array>();
        if (!list) return reportOther(value, place, "a list of stops", "a list of stops");
        if (list->size() > kMaxStops) {
            return report(
                place,
                std::to_string(list->size()) + " stops; at most " + std::to_string(kMaxStops),
                allowed);
        }
        if (list->empty()) {
            return report(place, "the list of stops is empty; " + allowed + " are allowed",
                          allowed);
        }
        std::vector<Stop>& stops = object.*target;
        for (size_t i = 0; i < list->size(); i++) {
            Stop stop;
            const Place here = place.element(i);
            const size_t before = total_;
            readObject((*list)[i], here, rows, stop);
            if (total_ != before) continue;
            if (!stops.empty() && stop.position < stops.back().position) {
                report(here.member("position"), "stops must be in order of position");
            }
            stops.push_back(stop);
        }
    }
    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  std::vector<Effect> T::*target, T& object) {
        const auto* list = value.as<JsonValue::Array>();
        if (!list) return reportOther(value, place, "a list of effects", "a list of effects");
        if (list->size() > kMaxEffects) {
            const std::string most = std::to_string(kMaxEffects);
            return report(place, std::to_string(list->size()) + " effects; at most " + most,
                          "0-" + most);
        }
        for (size_t i = 0; i < list->size(); i++) {
            const Place here = place.element(i);
            const auto type = readEffectType((*list)[i], here);
            if (!type) continue;
            Effect effect(*type);
            readObject((*list)[i], here, effectFields(*type), effect);
            (object.*target).push_back(std::move(effect));
        }
    }

    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  Fill T::*target, T& object) {
        Fill& fill = object.*target;
        if (!value.as<JsonValue::Object>()) {
            fill.color = readColor(value, place);
            return;
        }
        const auto type = readEffectType(value, place);
        if (!type) return;
        if (!kFills.contains(*type)) {
            return report(place.member("type"), "a stroke has no fill of that kind", kFillNames);
        }
        Effect effect(*type);
        readObject(value, place, effectFields(*type), effect);
        fill.effects.push_back(std::move(effect));
    }

    template <typename T>
    void readInto(const JsonValue& value, const Place& place, const Field<T>& /*field*/,
                  std::optional<Background> T::*target, T& object) {
        if (value.as<JsonValue::Object>()) {
            static const Rows<Background> rows = pointersTo(backgroundFields());
            readObject(value, place, rows, (object.*target).emplace());
        } else if (const auto color = readColor(value, place)) {
            object.*target = *color;
        }
    }

    std::optional<EffectType> readEffectType(const JsonValue& value, const Place& place) {
        const auto* members = value.as<JsonValue::Object>();
        if (!members) {
            reportOther(value, place, "an object", "an object");
            return std::nullopt;
        }
        const auto member = std::find_if(members->begin(), members->end(),
                                         [](const auto& m) { return m.name == "type"; });
        if (member == members->end()) {
            report(place, "\"type\" is missing", "type");
            return std::nullopt;
        }
        const Place here = place.member("type");
        const auto* name = member->value.as<std::string>();
        if (!name) {
            reportOther(member->value, here, "a string", "a string");
            return std::nullopt;
        }
        const auto type = parseEffectType(*name);
        if (!type) {
            reportUnknown(here, "no effect is called " + shown(member->value), *name, [] {
                std::vector<std::string_view> names;
                names.reserve(kEffectTypeCount);
                for (int i = 0; i < kEffectTypeCount; i++) {
                    names.push_back(effectName(static_cast<EffectType>(i)));
                }
                return names;
            });
        }
        return type;
    }

    std::optional<double> readNumber(const JsonValue& value, const Place& place, const Range& range,
                                     bool whole) {
        const auto* number = value.as<JsonNumber>();
        if (!number || (whole && !number->isWhole())) {
            const char* const wanted = whole ? "an integer (" : "a number (";
            reportOther(value, place, wanted + range.text() + ")", range.text());
            return std::nullopt;
        }
        if (!range.contains(number->value)) {
            report(place, shown(value) + " is out of range " + range.text(), range.text());
            return std::nullopt;
        }
        return number->value;
    }

    std::optional<Color> readColor(const JsonValue& value, const Place& place) {
        const auto* text = value.as<std::string>();
        const auto color = text ? parseColor(*text) : std::optional<Color>();
        if (!color) {
            const std::string forms = "\"#RRGGBB\" or \"#AARRGGBB\"";
            reportOther(value, place, "a colour (" + forms + ")", forms);
        }
        return color;
    }

    template <typename T>
    std::optional<std::string> readString(const JsonValue& value, const Place& place,
                                          const Field<T>& field) {
        const auto* text = value.as<std::string>();
        if (!text) {
            reportOther(value, place, "a string", "a string");
            return std::nullopt;
        }
        auto problem = text->find('\0') == std::string::npos
                           ? std::optional<std::string>()
                           : std::optional<std::string>("the string contains U+0000");
        if (!problem && field.check) problem = field.check(*text);
        if (problem) {
            report(place, std::move(*problem));
            return std::nullopt;
        }
        return *text;
    }

    const std::string name_;
    std::vector<StyleProblem> problems_;
    size_t total_ = 0;
};

}  // namespace

Style readStyle(std::string_view json, const std::string& name,
                const std::filesystem::path& source) {
    Style style;
    style.source = source;
    Reader(name).read(parseJson(json, name), style);
    return style;
}

}  // namespace gxtext
