// The tables of docs/style-format.md are written from the field table.
#include <gtest/gtest.h>

#include "GeneratedText.h"
#include "style/FieldTable.h"

namespace gxtext {
namespace {

const std::string kManual = GXTEXT_SOURCE_DIR "/docs/style-format.md";

std::string inCode(const std::string& text) {
    return "`" + text + "`";
}

template <typename T>
std::string valuesOf(const Field<T>& field) {
    constexpr const char* units[] = {"", " pixels", " degrees", " em"};
    switch (typeOf(field)) {
        case FieldType::kString:
            return "string";
        case FieldType::kNumber:
            return field.range.text() + units[static_cast<int>(field.unit)];
        case FieldType::kInteger:
            return field.range.text() + units[static_cast<int>(field.unit)] + ", whole";
        case FieldType::kBoolean:
            return "`true`, `false`";
        case FieldType::kColor:
            return "`#RRGGBB`, `#AARRGGBB`";
        case FieldType::kChoice: {
            std::string list;
            for (const auto name : std::get<Choice<T>>(field.target).names) {
                list += (list.empty() ? "`\"" : ", `\"") + std::string(name) + "\"`";
            }
            return list;
        }
        case FieldType::kPadding:
            return field.range.text() + " pixels, whole, or a list of four";
        case FieldType::kStops:
            return "list of 1-" + std::to_string(kMaxStops) + " stops";
        case FieldType::kEffects:
            return "list of effects";
        case FieldType::kBackground:
            return "`#RRGGBB`, `#AARRGGBB`, or an object";
        case FieldType::kFill:
            return "a colour, or a `linearGradient`, `radialGradient` or `pattern`";
    }
    return {};
}

template <typename T>
std::string initialOf(const Field<T>& field) {
    if (field.required) return "required";
    if (const auto* number = std::get_if<double>(&field.initial)) {
        char text[32];
        snprintf(text, sizeof(text), "%g", *number);
        return inCode(text);
    }
    if (const auto* flag = std::get_if<bool>(&field.initial)) return *flag ? "`true`" : "`false`";
    if (const auto* color = std::get_if<Color>(&field.initial)) {
        return inCode("\"" + formatColor(*color) + "\"");
    }
    const auto* name = std::get_if<std::string_view>(&field.initial);
    return name && !name->empty() ? inCode("\"" + std::string(*name) + "\"") : "";
}

template <typename T>
std::string rowOf(const Field<T>& field) {
    EXPECT_NE(field.meaning, "") << field.name;
    return "| " + inCode(std::string(field.name)) + " | " + valuesOf(field) + " | " +
           initialOf(field) + " | " + std::string(field.meaning) + " |\n";
}

const std::string kHead = "| field | value | default | meaning |\n|---|---|---|---|\n";

std::string styleTable() {
    std::string table = kHead;
    for (const auto& field : styleFields()) table += rowOf(field);
    return table;
}

std::string backgroundTable() {
    std::string table = kHead;
    for (const auto& field : backgroundFields()) table += rowOf(field);
    return table;
}

std::string effectTables() {
    std::string text;
    for (int i = 0; i < kEffectTypeCount; i++) {
        const auto type = static_cast<EffectType>(i);
        text += "### `" + std::string(effectName(type)) + "`\n\n" +
                std::string(effectMeaning(type)) + ".\n\n" + kHead;
        for (const auto* field : effectFields(type)) {
            if (field->name != "type") text += rowOf(*field);
        }
        text += "\n";
    }
    text +=
        "### Stops\n\nColours along a ramp, in order of position; two stops at one position make a "
        "hard edge.\n\n" +
        kHead;
    for (const auto& field : stopFields()) text += rowOf(field);
    return text;
}

// What stands between "<!-- name -->" and "<!-- end -->", replaced.
std::string withSection(std::string text, const std::string& name, const std::string& section) {
    const std::string begin = "<!-- " + name + ": written from src/style/FieldTable.cpp -->\n";
    const size_t from = text.find(begin);
    const size_t to = text.find("<!-- end -->", from);
    EXPECT_NE(to, std::string::npos) << name;
    if (to == std::string::npos) return text;
    return text.replace(from, to - from, begin + "\n" + section + "\n");
}

TEST(Manual, TablesFollowTheFieldTable) {
    std::string text = gxtest::readText(kManual);
    for (const auto& [name, section] : {std::pair{"fields", styleTable()},
                                        {"background", backgroundTable()},
                                        {"effects", effectTables()}}) {
        text = withSection(std::move(text), name, section);
    }
    gxtest::expectFile(kManual, text);
}

}  // namespace
}  // namespace gxtext
