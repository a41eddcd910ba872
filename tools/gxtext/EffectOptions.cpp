#include "EffectOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "ToolError.h"
#include "style/FieldTable.h"

namespace gxtool {

namespace {

using gxtext::Effect;
using gxtext::EffectType;
using gxtext::Field;
using nlohmann::ordered_json;

// An effect in a word: values by commas, colours anywhere among them, numbers in this order.
struct Shorthand {
    const char* option;
    EffectType type;
    std::vector<const char*> numbers;
    const char* word;  // the field that a name is for, if any
    const char* form;
};

const std::array<Shorthand, 4>& shorthands() {
    static const std::array<Shorthand, 4> all{{
        {"--stroke", EffectType::kStroke, {"size"}, "position", "SIZE,COLOR[,POSITION]"},
        {"--shadow",
         EffectType::kOuterShadow,
         {"distance", "size", "angle"},
         nullptr,
         "DISTANCE,SIZE,COLOR[,ANGLE]"},
        {"--glow", EffectType::kOuterGlow, {"size"}, nullptr, "SIZE,COLOR"},
        {"--gradient", EffectType::kLinearGradient, {"angle"}, nullptr, "COLOR,COLOR,...[,ANGLE]"},
    }};
    return all;
}

std::string helpOf(const Shorthand& shorthand) {
    std::string text(effectMeaning(shorthand.type));
    const char* separator = "; ";
    for (const char* name : shorthand.numbers) {
        for (const Field<Effect>* field : effectFields(shorthand.type)) {
            if (field->name != name) continue;
            text.append(separator).append(name).append(" ").append(field->range.text());
            separator = ", ";
        }
    }
    return text;
}

bool isNumber(const std::string& text) {
    return ordered_json::parse(text, nullptr, false).is_number();
}

// Stops at equal distances.
ordered_json rampOf(const std::vector<std::string>& colors) {
    ordered_json stops = ordered_json::array();
    const double last = std::max<double>(1, static_cast<double>(colors.size()) - 1);
    for (size_t i = 0; i < colors.size(); i++) {
        stops.push_back({{"color", colors[i]}, {"position", static_cast<double>(i) / last}});
    }
    return stops;
}

// The fields that the values stand for. Throws ToolError for one value too many.
ordered_json fieldsOf(const Shorthand& shorthand, const std::string& text) {
    ordered_json fields = ordered_json::object();
    std::vector<std::string> colors;
    size_t numbers = 0;
    for (const std::string& value : CLI::detail::split(text, ',')) {
        if (value.starts_with('#')) {
            colors.push_back(value);
        } else if (isNumber(value) && numbers < shorthand.numbers.size()) {
            fields[shorthand.numbers[numbers++]] = ordered_json::parse(value);
        } else if (!isNumber(value) && shorthand.word && !fields.contains(shorthand.word)) {
            fields[shorthand.word] = value;
        } else {
            throw ToolError("\"" + value + "\" is not one of " + shorthand.form, kUsage);
        }
    }
    if (shorthand.type == EffectType::kLinearGradient) {
        if (!colors.empty()) fields["stops"] = rampOf(colors);
    } else if (colors.size() == 1) {
        fields["color"] = colors[0];
    } else if (colors.size() > 1) {
        throw ToolError("one colour is allowed", kUsage);
    }
    return fields;
}

// Changes the effect of that type, or adds one.
Style withEffect(const Style& style, const Shorthand& shorthand, const std::string& text) {
    ordered_json fields = fieldsOf(shorthand, text);
    const auto same =
        std::find_if(style.effects.begin(), style.effects.end(),
                     [&](const Effect& effect) { return effect.type == shorthand.type; });
    const auto index = static_cast<size_t>(same - style.effects.begin());
    const std::string path = "effects[" + std::to_string(index) + "]";
    if (same == style.effects.end()) {
        fields["type"] = effectName(shorthand.type);
        return style.with(path, fields.dump());
    }
    Style result = style;
    for (const auto& [name, value] : fields.items()) {
        result = result.with(std::string(path).append(".").append(name), value.dump());
    }
    return result;
}

// PATH=VALUE
Style withSetting(const Style& style, const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) throw ToolError("this is not PATH=VALUE", kUsage);
    return style.with(text.substr(0, equals), text.substr(equals + 1));
}

// Puts the option before what is wrong with it.
template <typename Call>
Style applied(const std::string& option, Call call) {
    try {
        return call();
    } catch (const gxtext::Error& error) {
        throw ToolError(option + ": " + error.what(), kUsage);
    }
}

}  // namespace

void EffectOptions::addTo(CLI::App& app) {
    const char* const group = "Effects";
    for (size_t i = 0; i < shorthands().size(); i++) {
        const Shorthand& shorthand = shorthands()[i];
        app.add_option_function<std::string>(
               shorthand.option,
               [this, i](const std::string& text) {
                   effects_.push_back({i, text});
               },
               helpOf(shorthand))
            ->type_name(shorthand.form)
            ->group(group);
    }
    app.add_option("--set", settings_,
                   "Any field by its path in a style file: effects[0].size=6; may be repeated")
        ->type_name("PATH=VALUE")
        ->allow_extra_args(false)
        ->group(group);
    const gxtext::Range range{Style::kMinScale, Style::kMaxScale};
    app.add_option("--scale", scale_, "Multiplies every length, " + range.text() + " (default 1)")
        ->type_name("N")
        ->group(group);
}

Style EffectOptions::applyTo(Style style) const {
    for (const Given& given : effects_) {
        const Shorthand& shorthand = shorthands()[given.option];
        style = applied(std::string(shorthand.option) + " " + given.text,
                        [&] { return withEffect(style, shorthand, given.text); });
    }
    for (const std::string& setting : settings_) {
        style = applied("--set " + setting, [&] { return withSetting(style, setting); });
    }
    return style;
}

Style EffectOptions::scaled(const Style& style) const {
    return scale_ ? applied("--scale", [&] { return style.scaled(*scale_); }) : style;
}

}  // namespace gxtool
