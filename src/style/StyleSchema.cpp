#include "style/StyleSchema.h"

#include "style/StyleJson.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

constexpr const char* kUnits[] = {"", "px", "deg", "em"};
constexpr const char* kControls[] = {"",       "text",  "font",    "file", "number",
                                     "slider", "angle", "switch",  "menu", "color",
                                     "sides",  "ramp",  "effects", "fill", "box"};

ordered_json reference(const std::string& name) {
    return {{"$ref", "#/$defs/" + name}};
}

ordered_json number(const char* type, const Range& range) {
    return {{"type", type},
            {"minimum", shortestNumber(static_cast<float>(range.min))},
            {"maximum", shortestNumber(static_cast<float>(range.max))}};
}

ordered_json padding(const Range& range) {
    const ordered_json side = number("integer", range);
    const ordered_json sides = {
        {"type", "array"}, {"items", side}, {"minItems", 4}, {"maxItems", 4}};
    return {{"oneOf", {side, sides}}};
}

ordered_json effects() {
    ordered_json types = ordered_json::array();
    for (int i = 0; i < kEffectTypeCount; i++) {
        types.push_back(reference(std::string(effectName(static_cast<EffectType>(i)))));
    }
    return {{"type", "array"}, {"maxItems", kMaxEffects}, {"items", {{"oneOf", types}}}};
}

ordered_json fill() {
    ordered_json kinds = ordered_json::array({reference("color")});
    for (int i = 0; i < kEffectTypeCount; i++) {
        const auto type = static_cast<EffectType>(i);
        if (kFills.contains(type)) kinds.push_back(reference(std::string(effectName(type))));
    }
    return {{"oneOf", kinds}};
}

template <typename T>
ordered_json typeSchema(const Field<T>& field) {
    switch (typeOf(field)) {
        case FieldType::kString:
            if (field.check == nullptr || !field.required) return {{"type", "string"}};
            return {{"type", "string"}, {"minLength", 1}};
        case FieldType::kNumber:
            return number("number", field.range);
        case FieldType::kInteger:
            return number("integer", field.range);
        case FieldType::kBoolean:
            return {{"type", "boolean"}};
        case FieldType::kColor:
            return reference("color");
        case FieldType::kChoice:
            return {{"enum", std::get<Choice<T>>(field.target).names}};
        case FieldType::kPadding:
            return padding(field.range);
        case FieldType::kStops:
            return reference("stops");
        case FieldType::kEffects:
            return effects();
        case FieldType::kFill:
            return fill();
        case FieldType::kBackground:
            return {{"oneOf", {reference("color"), reference("background")}}};
    }
    return {};
}

template <typename T>
ordered_json fieldSchema(const Field<T>& field) {
    ordered_json schema = typeSchema(field);
    if (field.initial.index() != 0) schema["default"] = initialJson(field.initial);
    if (field.unit != Unit::kNone) schema["x-unit"] = kUnits[static_cast<int>(field.unit)];
    if (field.control != Control::kNone) {
        schema["x-control"] = kControls[static_cast<int>(field.control)];
    }
    schema["description"] = field.meaning;
    return schema;
}

// An object that has these fields and no others.
class ObjectSchema {
public:
    template <typename T>
    void add(const Field<T>& field, const ordered_json& schema) {
        properties_[std::string(field.name)] = schema;
        if (field.required) required_.push_back(field.name);
    }
    template <typename T>
    void add(const Field<T>& field) {
        add(field, fieldSchema(field));
    }
    // After what `schema` says already.
    ordered_json complete(ordered_json schema) const {
        schema["type"] = "object";
        schema["additionalProperties"] = false;
        if (!required_.empty()) schema["required"] = required_;
        schema["properties"] = properties_;
        return schema;
    }

private:
    ordered_json properties_ = ordered_json::object();
    ordered_json required_ = ordered_json::array();
};

ordered_json effectSchema(EffectType type) {
    ObjectSchema object;
    for (const Field<Effect>* field : effectFields(type)) {
        if (field->name == "type") {
            object.add(*field, {{"const", effectName(type)}});
        } else {
            object.add(*field);
        }
    }
    return object.complete({{"title", effectName(type)}, {"description", effectMeaning(type)}});
}

ordered_json definitions() {
    ordered_json result;
    result["color"] = {{"type", "string"}, {"pattern", "^#([0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})$"}};
    ObjectSchema background;
    for (const Field<Background>& field : backgroundFields()) background.add(field);
    result["background"] = background.complete({{"description", "Box behind lines"}});
    ObjectSchema stop;
    for (const Field<Stop>& field : stopFields()) stop.add(field);
    result["stop"] = stop.complete({{"description", "One colour of a ramp"}});
    result["stops"] = {{"type", "array"},
                       {"description", "Colour stops in order of position"},
                       {"minItems", 1},
                       {"maxItems", kMaxStops},
                       {"items", reference("stop")}};
    for (int i = 0; i < kEffectTypeCount; i++) {
        const auto type = static_cast<EffectType>(i);
        result[std::string(effectName(type))] = effectSchema(type);
    }
    return result;
}

}  // namespace

std::string styleSchema() {
    ObjectSchema style;
    for (const Field<Style>& field : styleFields()) style.add(field);
    ordered_json schema = style.complete(
        {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
         {"title", "Text style"},
         {"description", "How a text is to look: font, colours, layout and effects"}});
    schema["$defs"] = definitions();
    return schema.dump(2) + "\n";
}

}  // namespace gxtext
