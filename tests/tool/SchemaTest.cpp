// The schema that ships with the program and the parser have to agree.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "StyleFile.h"
#include "ToolError.h"

namespace gxtool {
namespace {

using nlohmann::json;

json loadJson(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return json::parse(stream);
}

const json& schema() {
    static const json document = loadJson(GXTEXT_SOURCE_DIR "/tools/gxtext/style.schema.json");
    return document;
}

// A field's description with what its $ref points at.
json resolved(json property) {
    if (property.contains("$ref")) {
        const std::string name = property["$ref"].get<std::string>().substr(strlen("#/$defs/"));
        property.update(schema()["$defs"][name]);
    }
    return property;
}

bool accepts(const json& document) {
    try {
        parseStyle(document.dump(), "s", "");
        return true;
    } catch (const ToolError&) {
        return false;
    }
}

json withEffect(const json& effect) {
    return {{"effects", json::array({effect})}};
}

// The smallest effect of that type: the type and the required fields.
json smallestEffect(const json& definition) {
    json effect;
    for (const json& name : definition["required"]) {
        if (name == "type") effect["type"] = definition["properties"]["type"]["const"];
        if (name == "pattern") effect["pattern"] = "p.png";
        if (name == "stops") effect["stops"] = {{{"color", "#000000"}, {"position", 0}}};
    }
    return effect;
}

// Probes one field at the ends of what the schema allows, and just beyond. `put` makes a document
// of a value.
template <typename Put>
void expectAgreement(const std::string& name, const json& property, Put put) {
    SCOPED_TRACE(name);
    if (property.contains("minimum")) {
        const double low = property["minimum"];
        const double high = property["maximum"];
        const bool whole = property["type"] == "integer";
        const auto number = [&](double v) { return whole ? json(static_cast<int>(v)) : json(v); };
        EXPECT_TRUE(accepts(put(number(low))));
        EXPECT_TRUE(accepts(put(number(high))));
        EXPECT_FALSE(accepts(put(number(low - 1))));
        EXPECT_FALSE(accepts(put(number(high + 1))));
        EXPECT_EQ(accepts(put((low + high) / 2 + 0.25)), !whole);
        EXPECT_FALSE(accepts(put("1")));
    } else if (property.contains("enum")) {
        for (const json& value : property["enum"]) EXPECT_TRUE(accepts(put(value)));
        EXPECT_FALSE(accepts(put("nonsense")));
    } else if (property.contains("pattern") && property["pattern"].is_string()) {
        for (const char* good : {"#12abEF", "#8012abEF"}) EXPECT_TRUE(accepts(put(good)));
        for (const char* bad : {"12abEF", "#12abE", "#12abEF0", "#12abEG"})
            EXPECT_FALSE(accepts(put(bad)));
    } else if (property.value("type", "") == "boolean") {
        EXPECT_TRUE(accepts(put(true)));
        EXPECT_FALSE(accepts(put(0)));
    } else if (property.value("type", "") == "string") {
        EXPECT_TRUE(accepts(put("some text")));
        EXPECT_FALSE(accepts(put(1)));
    }
}

std::vector<std::string> keysOf(const json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) keys.push_back(key);
    return keys;
}

TEST(Schema, TopLevelAgreesWithTheParser) {
    const json& properties = schema()["properties"];
    EXPECT_THAT(keysOf(properties), testing::UnorderedElementsAreArray(styleFieldNames()));
    for (const auto& [name, property] : properties.items()) {
        expectAgreement(name, resolved(property), [&, key = name](const json& v) {
            return json{{key, v}};
        });
    }
}

TEST(Schema, EffectsAgreeWithTheParser) {
    const json& choices = schema()["properties"]["effects"]["items"]["oneOf"];
    ASSERT_EQ(choices.size(), static_cast<size_t>(kEffectTypeCount));
    for (const json& choice : choices) {
        const json definition = resolved(choice);
        const json smallest = smallestEffect(definition);
        SCOPED_TRACE(smallest.dump());
        EXPECT_TRUE(accepts(withEffect(smallest)));
        const auto type = parseEffectType(smallest["type"].get<std::string>());
        ASSERT_TRUE(type);
        EXPECT_THAT(keysOf(definition["properties"]),
                    testing::UnorderedElementsAreArray(effectFieldNames(*type)));
        for (const auto& [name, property] : definition["properties"].items()) {
            if (name == "type") continue;
            expectAgreement(name, resolved(property), [&, key = name](const json& v) {
                json effect = smallest;
                effect[key] = v;
                return withEffect(effect);
            });
        }
    }
}

// The default that the schema gives for a field is the one that a style without the field gets.
TEST(Schema, DefaultsAreTheParsers) {
    for (int i = 0; i < kEffectTypeCount; i++) {
        const std::string name(effectName(static_cast<EffectType>(i)));
        const json& definition = schema()["$defs"][name];
        const json smallest = smallestEffect(definition);
        json spelledOut = smallest;
        for (const auto& [key, property] : definition["properties"].items()) {
            if (property.contains("default")) spelledOut[key] = property["default"];
        }
        const EffectStyle a = parseStyle(withEffect(smallest).dump(), "s", "").effects.at(0);
        const EffectStyle b = parseStyle(withEffect(spelledOut).dump(), "s", "").effects.at(0);
        EXPECT_EQ(
            std::tie(a.angle, a.distance, a.size, a.scale, a.depth, a.altitude, a.opacity,
                     a.highlightOpacity, a.shadowOpacity, a.color, a.highlightColor, a.shadowColor,
                     a.cap, a.kind, a.technique, a.direction, a.soften, a.position),
            std::tie(b.angle, b.distance, b.size, b.scale, b.depth, b.altitude, b.opacity,
                     b.highlightOpacity, b.shadowOpacity, b.color, b.highlightColor, b.shadowColor,
                     b.cap, b.kind, b.technique, b.direction, b.soften, b.position))
            << name;
    }
}

TEST(Schema, ExampleStylesAreValid) {
    int count = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(GXTEXT_SOURCE_DIR "/examples/styles")) {
        if (entry.path().extension() != ".json") continue;
        EXPECT_NO_THROW(loadStyle(entry.path().string())) << entry.path();
        count++;
    }
    EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace gxtool
