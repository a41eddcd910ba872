#include "style/LayerRecord.h"

#include <algorithm>
#include <unordered_set>

#include "style/FieldTable.h"

namespace gxtext {

namespace {

// Pixels of a unit, at the 72 to an inch that documents have for want of another resolution.
constexpr double kPixelsPerInch = 72;
constexpr std::pair<std::string_view, double> kUnitPixels[] = {
    {"Points", kPixelsPerInch / 72},
    {"Picas", kPixelsPerInch / 6},
    {"Millimeters", kPixelsPerInch / 25.4},
    {"Centimeters", kPixelsPerInch / 2.54},
    {"Inches", kPixelsPerInch},
};

bool isPlain(std::string_view units) {
    return units == "Pixels" || units == "None";
}

}  // namespace

const JsonValue* LayerRecord::find(std::string_view name) {
    for (size_t i = 0; i < fields_.size(); i++) {
        if (fields_[i].name != name) continue;
        asked_[i] = true;
        return &fields_[i].value;
    }
    return nullptr;
}

std::string LayerRecord::pathOf(std::string_view name) const {
    return path_ + pathStep(name);
}

void LayerRecord::dropOther(std::string_view name, const JsonValue& value, const char* wanted) {
    drop(name, shown(value) + " is not " + wanted);
}

bool LayerRecord::has(std::string_view name) const {
    return std::any_of(fields_.begin(), fields_.end(),
                       [name](const JsonMember& field) { return field.name == name; });
}

std::optional<double> LayerRecord::number(std::string_view name) {
    const JsonValue* value = find(name);
    if (!value) return std::nullopt;
    if (const auto* number = value->as<JsonNumber>()) return number->value;
    dropOther(name, *value, "a number");
    return std::nullopt;
}

bool LayerRecord::flag(std::string_view name, bool otherwise) {
    const JsonValue* value = find(name);
    if (!value) return otherwise;
    if (const bool* flag = value->as<bool>()) return *flag;
    dropOther(name, *value, "true or false");
    return otherwise;
}

std::optional<std::string> LayerRecord::word(std::string_view name) {
    const JsonValue* value = find(name);
    if (!value) return std::nullopt;
    if (const auto* text = value->as<std::string>()) return *text;
    dropOther(name, *value, "a string");
    return std::nullopt;
}

std::optional<LayerRecord> LayerRecord::record(std::string_view name) {
    const JsonValue* value = find(name);
    if (!value) return std::nullopt;
    if (const auto* object = value->as<JsonValue::Object>()) {
        return LayerRecord(*object, pathOf(name), losses_);
    }
    dropOther(name, *value, "an object");
    return std::nullopt;
}

std::vector<LayerRecord> LayerRecord::records(std::string_view name) {
    std::vector<LayerRecord> records;
    const JsonValue* value = find(name);
    if (!value) return records;
    if (const auto* object = value->as<JsonValue::Object>()) {
        records.emplace_back(*object, pathOf(name), losses_);
    } else if (const auto* list = value->as<JsonValue::Array>()) {
        for (size_t i = 0; i < list->size(); i++) {
            const std::string path = pathOf(name) + "[" + std::to_string(i) + "]";
            const auto* element = (*list)[i].as<JsonValue::Object>();
            if (element) {
                records.emplace_back(*element, path, losses_);
            } else {
                losses_.push_back({path, LossKind::kDropped, shown((*list)[i]) + " is no object"});
            }
        }
    } else {
        dropOther(name, *value, "a list of objects");
    }
    return records;
}

std::vector<double> LayerRecord::numbers(std::string_view name) {
    std::vector<double> numbers;
    const JsonValue* value = find(name);
    if (!value) return numbers;
    const auto* list = value->as<JsonValue::Array>();
    for (const JsonValue& element : list ? *list : JsonValue::Array()) {
        if (const auto* number = element.as<JsonNumber>()) numbers.push_back(number->value);
    }
    if (!list || numbers.size() != list->size()) dropOther(name, *value, "a list of numbers");
    return numbers;
}

std::optional<LayerRecord::Measure> LayerRecord::measure(std::string_view name) {
    const JsonValue* value = find(name);
    if (!value) return std::nullopt;
    if (const auto* number = value->as<JsonNumber>()) return Measure{number->value, "Pixels"};
    const auto* object = value->as<JsonValue::Object>();
    if (!object) {
        dropOther(name, *value, "a number with a unit");
        return std::nullopt;
    }
    LayerRecord record(*object, pathOf(name), losses_);
    const std::optional<double> number = record.number("value");
    std::string units = record.word("units").value_or("Pixels");
    record.finish();
    if (!number) return std::nullopt;
    return Measure{*number, std::move(units)};
}

std::optional<double> LayerRecord::length(std::string_view name) {
    const std::optional<Measure> measured = measure(name);
    if (!measured) return std::nullopt;
    if (isPlain(measured->units)) return measured->value;
    for (const auto& [unit, pixels] : kUnitPixels) {
        if (unit != measured->units) continue;
        approximate(name, "the resolution is not in the file; 72 pixels to an inch are assumed");
        return measured->value * pixels;
    }
    approximate(name, shown({measured->units}) + " is no unit of length; taken for pixels");
    return measured->value;
}

std::optional<double> LayerRecord::percentage(std::string_view name) {
    const std::optional<Measure> measured = measure(name);
    if (!measured) return std::nullopt;
    if (!isPlain(measured->units) && measured->units != "Percent") {
        approximate(name, shown({measured->units}) + " does not go with it; taken for per cent");
    }
    return measured->value;
}

std::optional<double> LayerRecord::bounded(std::string_view name, double least, double most) {
    const std::optional<double> given = number(name);
    if (!given) return std::nullopt;
    const double kept = std::clamp(*given, least, most);
    if (kept != *given) {
        approximate(name, "out of range " + Range{least, most}.text());
    }
    return kept;
}

void LayerRecord::approximate(std::string_view name, std::string reason) {
    losses_.push_back({pathOf(name), LossKind::kApproximated, std::move(reason)});
}

void LayerRecord::drop(std::string_view name, std::string reason) {
    losses_.push_back({pathOf(name), LossKind::kDropped, std::move(reason)});
}

void LayerRecord::approximateAll(std::string reason) {
    losses_.push_back({path_, LossKind::kApproximated, std::move(reason)});
}

void LayerRecord::dropAll(std::string reason) {
    losses_.push_back({path_, LossKind::kDropped, std::move(reason)});
}

void LayerRecord::dropUnless(std::string_view name, double neutral, const char* reason) {
    if (number(name).value_or(neutral) != neutral) drop(name, reason);
}

void LayerRecord::finish() {
    std::unordered_set<std::string_view> names;
    for (size_t i = 0; i < fields_.size(); i++) {
        const std::string& name = fields_[i].name;
        const bool isAgain = !names.insert(name).second;
        if (asked_[i]) continue;
        drop(name, isAgain ? "given twice; the first one counts" : "unknown field");
    }
}

}  // namespace gxtext
