// The schema as its users see it, held against what the reader does.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "GeneratedText.h"
#include "style/Style.h"
#include "style/StyleSchema.h"

namespace gxtext {
namespace {

using nlohmann::json;

const std::string kSchemaFile = GXTEXT_SOURCE_DIR "/src/style/style.schema.json";

const json& schema() {
    static const json document = json::parse(styleSchema());
    return document;
}

// A field's description with what its $ref points at.
json resolved(json property) {
    if (property.contains("$ref")) {
        property.update(
            schema().at(json::json_pointer(property["$ref"].get<std::string>().substr(1))));
    }
    return property;
}

// Accepted, and still the same after it has been written and read once more.
bool accepts(const json& document) {
    try {
        const Style style = Style::fromJson(document.dump());
        EXPECT_EQ(Style::fromJson(style.toJson()), style) << document;
        return true;
    } catch (const StyleError&) {
        return false;
    }
}

json withEffect(const json& effect) {
    return {{"effects", json::array({effect})}};
}

const json kStops = {{{"color", "#000000"}, {"position", 0}}};

// The smallest effect of that type: the type and the required fields.
json smallestEffect(const json& definition) {
    json effect;
    for (const json& name : definition["required"]) {
        if (name == "type") effect["type"] = definition["properties"]["type"]["const"];
        if (name == "pattern") effect["pattern"] = "p.png";
        if (name == "stops") effect["stops"] = kStops;
    }
    return effect;
}

// Values at the ends of what the schema allows, and just beyond.
struct Probes {
    std::vector<json> good;
    std::vector<json> bad;
};

Probes probesOf(const std::string& name, const json& property) {
    if (property.contains("minimum")) {
        const double low = property["minimum"];
        const double high = property["maximum"];
        if (property["type"] == "number") {
            return {{low, high, (low + high) / 2}, {low - 1, high + 1, "1", json()}};
        }
        return {{int(low), int(high)}, {int(low) - 1, int(high) + 1, low + 0.5, true}};
    }
    if (property.contains("enum")) return {property["enum"], {"nonsense", 0, 1}};
    if (property.contains("pattern") && property["pattern"].is_string()) {
        return {{"#12abEF", "#8012abEF"}, {"12abEF", "#12abE", "#12abEF0", "#12abEG", 1}};
    }
    if (name == "fontFeatures" || name == "locale") return {{"ja"}, {"-", 1}};
    if (name == "fontVariations") return {{"'wght' 650"}, {"-", 1}};
    const std::string type = property.value("type", "");
    if (type == "boolean") return {{true, false}, {0, "true"}};
    if (type == "string") return {{"some text"}, {1, json()}};
    if (name == "padding") return {{0, 4096, {1, 2, 3, 4}}, {-1, {1, 2, 3}, {1, 2, 3, 4097}, "1"}};
    if (name == "stops") return {{kStops}, {json::array(), 1}};
    if (name == "effects") return {{json::array()}, {json::object(), 1}};
    if (name == "background") {
        return {{"#12abEF", {{"color", "#12abEF"}, {"radius", 4096}, {"span", "block"}}},
                {"red", {{"radius", 1}}, {{"color", "#12abEF"}, {"padding", -1}}}};
    }
    if (name == "fill") {
        const json ramp = {{"type", "linearGradient"}, {"stops", kStops}};
        return {{"#12abEF", ramp, {{"type", "pattern"}, {"pattern", "p.png"}}},
                {"red", 1, json::array({ramp}), {{"type", "stroke"}}, {{"type", "pattern"}}}};
    }
    ADD_FAILURE() << "no probe for " << name << ": " << property;
    return {};
}

template <typename Put>
void expectAgreement(const std::string& name, const json& property, Put put) {
    const Probes probes = probesOf(name, resolved(property));
    for (const json& value : probes.good) EXPECT_TRUE(accepts(put(value))) << name << ' ' << value;
    for (const json& value : probes.bad) EXPECT_FALSE(accepts(put(value))) << name << ' ' << value;
}

TEST(Schema, ShippedFileIsTheTables) {
    gxtest::expectFile(kSchemaFile, styleSchema());
}

TEST(Schema, AgreesWithTheReader) {
    for (const auto& [name, property] : schema()["properties"].items()) {
        expectAgreement(name, property, [&, key = name](const json& v) { return json{{key, v}}; });
    }
    const json& choices = schema()["properties"]["effects"]["items"]["oneOf"];
    ASSERT_EQ(choices.size(), static_cast<size_t>(kEffectTypeCount));
    for (const json& choice : choices) {
        const json definition = resolved(choice);
        const json smallest = smallestEffect(definition);
        SCOPED_TRACE(smallest.dump());
        EXPECT_TRUE(accepts(withEffect(smallest)));
        for (const auto& [name, property] : definition["properties"].items()) {
            if (name == "type") continue;
            expectAgreement(name, property, [&, key = name](const json& v) {
                json effect = smallest;
                effect[key] = v;
                return withEffect(effect);
            });
        }
    }
}

// The default that the schema gives for a field is the one that a style without the field gets.
TEST(Schema, DefaultsAreTheReaders) {
    const auto spelledOut = [](json object, const json& properties) {
        for (const auto& [key, property] : properties.items()) {
            if (property.contains("default")) object[key] = property["default"];
        }
        return object;
    };
    json effects = json::array();
    json full = json::array();
    for (const json& choice : schema()["properties"]["effects"]["items"]["oneOf"]) {
        const json definition = resolved(choice);
        effects.push_back(smallestEffect(definition));
        full.push_back(spelledOut(effects.back(), definition["properties"]));
    }
    json document = spelledOut(json::object(), schema()["properties"]);
    document["effects"] = full;
    EXPECT_EQ(Style::fromJson(document.dump()).toJson(),
              Style::fromJson(json{{"effects", effects}}.dump()).toJson());
    Style defaults;
    for (int i = 0; i < kEffectTypeCount; i++) {
        defaults.effects.emplace_back(static_cast<EffectType>(i));
        defaults.effects.back().pattern = "p.png";
        if (effects[static_cast<size_t>(i)].contains("stops")) {
            defaults.effects.back().stops = {Stop{}};
        }
    }
    EXPECT_EQ(Style::fromJson(document.dump()), defaults);
}

TEST(Schema, ShippedStylesAreValidAndNameIt) {
    int count = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(GXTEXT_SOURCE_DIR "/examples/styles")) {
        if (entry.path().extension() != ".json") continue;
        const std::string text = gxtest::readText(entry.path().string());
        EXPECT_NO_THROW(Style::fromJson(text, entry.path())) << entry.path();
        const json document = json::parse(text);
        const auto named = entry.path().parent_path() / document.value("$schema", "none");
        EXPECT_TRUE(std::filesystem::exists(named) &&
                    std::filesystem::equivalent(named, kSchemaFile))
            << entry.path() << " names " << named;
        count++;
    }
    EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace gxtext
