#include "StyleFile.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <variant>

#include "FileIo.h"
#include "ToolError.h"

namespace gxtool {

namespace {

using nlohmann::json;

// Where in the file a value stands, for messages.
struct Place {
    const std::string& file;
    std::string path = "$";
    const std::filesystem::path& folder;

    Place member(std::string_view name) const {
        return {file, path + "." + std::string(name), folder};
    }
    Place element(size_t index) const {
        return {file, path + "[" + std::to_string(index) + "]", folder};
    }
    [[noreturn]] void fail(const std::string& reason) const {
        throw ToolError(file + ": " + path + ": " + reason);
    }
};

// The value as the file has it, shortened for a message.
std::string shown(const json& value) {
    constexpr size_t kLongest = 40;
    // Not spelled out: they may be nested deeper than the stack.
    if (value.is_array()) return value.empty() ? "[]" : "[...]";
    if (value.is_object()) return value.empty() ? "{}" : "{...}";
    std::string text = value.dump(-1, ' ', true);
    if (text.size() > kLongest) text = text.substr(0, kLongest) + "...";
    return text;
}

std::string inQuotes(std::string_view name) {
    std::string text("\"");
    text.append(name).append("\"");
    return text;
}

void expect(bool holds, const json& value, const Place& place, const std::string& wanted) {
    if (!holds) place.fail(shown(value) + " is not " + wanted);
}

// One field of an object T: where it goes and what it accepts. A reader handles what is no plain
// value.
template <typename T>
struct Field {
    using Reader = void (*)(const json&, const Place&, T&);

    std::string_view name;
    std::variant<float T::*, int T::*, bool T::*, Color T::*, Reader> target;
    Range range{0, 0};
    bool required = false;
};

template <typename T>
using Fields = std::vector<Field<T>>;

double readNumber(const json& value, const Place& place, const Range& range) {
    expect(value.is_number(), value, place, "a number (" + range.text() + ")");
    const double number = value.get<double>();
    if (!range.contains(number)) place.fail(shown(value) + " is out of range " + range.text());
    return number;
}

int readInteger(const json& value, const Place& place, const Range& range) {
    expect(value.is_number_integer(), value, place, "an integer (" + range.text() + ")");
    return static_cast<int>(readNumber(value, place, range));
}

std::string readString(const json& value, const Place& place) {
    expect(value.is_string(), value, place, "a string");
    auto text = value.get<std::string>();
    if (text.find('\0') != std::string::npos) place.fail("the string contains U+0000");
    return text;
}

Color readColor(const json& value, const Place& place) {
    const auto color = value.is_string() ? parseColor(value.get_ref<const std::string&>())
                                         : std::optional<Color>();
    expect(color.has_value(), value, place, "a colour (\"#RRGGBB\" or \"#AARRGGBB\")");
    return *color;
}

template <typename T>
void readField(const json& value, const Place& place, const Field<T>& field, T& object) {
    struct Visitor {
        const json& value;
        const Place& place;
        const Range& range;
        T& object;
        void operator()(float T::*member) const {
            object.*member = static_cast<float>(readNumber(value, place, range));
        }
        void operator()(int T::*member) const { object.*member = readInteger(value, place, range); }
        void operator()(bool T::*member) const {
            expect(value.is_boolean(), value, place, "true or false");
            object.*member = value.get<bool>();
        }
        void operator()(Color T::*member) const { object.*member = readColor(value, place); }
        void operator()(typename Field<T>::Reader reader) const { reader(value, place, object); }
    };
    std::visit(Visitor{value, place, field.range, object}, field.target);
}

// Edit distance of two short names.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); j++) row[j] = j;
    for (size_t i = 1; i <= a.size(); i++) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); j++) {
            const size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row[b.size()];
}

// "; did you mean \"size\"?", or the list of names when none is near.
std::string suggestion(std::string_view given, const std::vector<std::string_view>& names) {
    constexpr size_t kLongestName = 40;
    if (given.size() <= kLongestName) {
        const auto nearest = std::min_element(names.begin(), names.end(), [&](auto a, auto b) {
            return distance(given, a) < distance(given, b);
        });
        if (distance(given, *nearest) <= std::max<size_t>(1, given.size() / 3)) {
            return "; did you mean " + inQuotes(*nearest) + "?";
        }
    }
    std::string list;
    for (const std::string_view name : names) list.append(list.empty() ? "" : ", ").append(name);
    return "; allowed: " + list;
}

template <typename T>
std::vector<std::string_view> namesOf(const Fields<T>& fields) {
    std::vector<std::string_view> names;
    for (const auto& field : fields) names.push_back(field.name);
    return names;
}

template <typename T>
void readObject(const json& value, const Place& place, const Fields<T>& fields, T& object) {
    expect(value.is_object(), value, place, "an object");
    for (const auto& [key, member] : value.items()) {
        const std::string_view name = key;
        const auto field = std::find_if(fields.begin(), fields.end(),
                                        [name](const auto& f) { return f.name == name; });
        if (field == fields.end()) {
            place.member(name).fail("unknown field" + suggestion(name, namesOf(fields)));
        }
        readField(member, place.member(name), *field, object);
    }
    for (const auto& field : fields) {
        if (field.required && !value.contains(field.name)) {
            place.fail(inQuotes(field.name) + " is missing");
        }
    }
}

const Fields<Stop>& stopFields() {
    static const Fields<Stop> fields{
        {"color", &Stop::color, {}, true},
        {"opacity", &Stop::opacity, limits::kUnit},
        {"position", &Stop::position, limits::kUnit, true},
    };
    return fields;
}

void readStops(const json& value, const Place& place, EffectStyle& effect) {
    expect(value.is_array(), value, place, "a list of stops");
    if (value.size() > limits::kMaxStops) {
        place.fail(std::to_string(value.size()) + " stops; at most " +
                   std::to_string(limits::kMaxStops));
    }
    if (value.empty()) place.fail("the list of stops is empty; 1-256 are allowed");
    for (size_t i = 0; i < value.size(); i++) {
        Stop stop;
        readObject(value[i], place.element(i), stopFields(), stop);
        if (!effect.stops.empty() && stop.position < effect.stops.back().position) {
            place.element(i).member("position").fail("stops must be in order of position");
        }
        effect.stops.push_back(stop);
    }
}

void readPosition(const json& value, const Place& place, EffectStyle& effect) {
    if (value == "center") {
        effect.position = StrokePosition::kCenter;
    } else if (value == "outside") {
        effect.position = StrokePosition::kOutside;
    } else {
        expect(value == "inside", value, place, "one of \"outside\", \"center\", \"inside\"");
        effect.position = StrokePosition::kInside;
    }
}

void readPattern(const json& value, const Place& place, EffectStyle& effect) {
    const std::string path = readString(value, place);
    if (path.empty()) place.fail("the path of the pattern image is empty");
    effect.pattern = place.folder / path;
}

// Checked by readEffect before the other fields.
void skipType(const json&, const Place&, EffectStyle&) {}

Fields<EffectStyle> shadowFields() {
    return {{"angle", &EffectStyle::angle, limits::kAngle},
            {"distance", &EffectStyle::distance, limits::kPercent},
            {"size", &EffectStyle::size, limits::kPercent},
            {"color", &EffectStyle::color},
            {"opacity", &EffectStyle::opacity, limits::kUnit}};
}

Fields<EffectStyle> glowFields() {
    return {{"size", &EffectStyle::size, limits::kPercent},
            {"color", &EffectStyle::color},
            {"opacity", &EffectStyle::opacity, limits::kUnit},
            {"stops", readStops}};
}

Fields<EffectStyle> gradientFields() {
    return {{"scale", &EffectStyle::scale, limits::kGradientScale},
            {"opacity", &EffectStyle::opacity, limits::kUnit},
            {"stops", readStops, {}, true}};
}

Fields<EffectStyle> reliefFields() {
    return {{"kind", &EffectStyle::kind, limits::kSmallInt},
            {"size", &EffectStyle::size, limits::kPercent},
            {"depth", &EffectStyle::depth, limits::kDepth},
            {"technique", &EffectStyle::technique, limits::kSmallInt},
            {"direction", &EffectStyle::direction, limits::kSmallInt},
            {"soften", &EffectStyle::soften, limits::kSoften},
            {"opacity", &EffectStyle::opacity, limits::kUnit},
            {"angle", &EffectStyle::angle, limits::kAngle},
            {"altitude", &EffectStyle::altitude, limits::kAltitude},
            {"highlightColor", &EffectStyle::highlightColor},
            {"highlightOpacity", &EffectStyle::highlightOpacity, limits::kUnit},
            {"shadowColor", &EffectStyle::shadowColor},
            {"shadowOpacity", &EffectStyle::shadowOpacity, limits::kUnit}};
}

Fields<EffectStyle> typedFields(EffectType type) {
    switch (type) {
        case EffectType::kStroke:
            return {{"size", &EffectStyle::size, limits::kPercent},
                    {"color", &EffectStyle::color},
                    {"opacity", &EffectStyle::opacity, limits::kUnit},
                    {"cap", &EffectStyle::cap, limits::kSmallInt},
                    {"position", readPosition}};
        case EffectType::kOuterShadow:
        case EffectType::kInnerShadow:
            return shadowFields();
        case EffectType::kOuterGlow:
        case EffectType::kInnerGlow:
            return glowFields();
        case EffectType::kLinearGradient: {
            Fields<EffectStyle> fields = gradientFields();
            fields.push_back({"angle", &EffectStyle::angle, limits::kAngle});
            return fields;
        }
        case EffectType::kRadialGradient:
            return gradientFields();
        case EffectType::kPattern:
            return {{"pattern", readPattern, {}, true},
                    {"scale", &EffectStyle::scale, limits::kPatternScale},
                    {"opacity", &EffectStyle::opacity, limits::kUnit}};
        case EffectType::kBevel:
        case EffectType::kEmboss:
            return reliefFields();
    }
    return {};
}

Fields<EffectStyle> effectFields(EffectType type) {
    Fields<EffectStyle> fields = typedFields(type);
    fields.push_back({"type", skipType, {}, true});
    return fields;
}

// What an effect looks like when only its type is given.
EffectStyle defaultEffect(EffectType type) {
    EffectStyle effect;
    effect.type = type;
    switch (type) {
        case EffectType::kStroke:
            effect.size = 2.0f;
            break;
        case EffectType::kOuterShadow:
        case EffectType::kInnerShadow:
            effect.angle = 120.0f;
            effect.distance = 5.0f;
            effect.size = 5.0f;
            effect.opacity = 0.75f;
            break;
        case EffectType::kOuterGlow:
        case EffectType::kInnerGlow:
            effect.size = 5.0f;
            effect.color = Color{0xFFFFFFFFu};
            effect.opacity = 0.75f;
            break;
        case EffectType::kLinearGradient:
            effect.angle = 90.0f;
            break;
        case EffectType::kBevel:
        case EffectType::kEmboss:
            effect.size = 5.0f;
            effect.angle = 120.0f;
            break;
        default:
            break;
    }
    return effect;
}

EffectType readEffectType(const json& value, const Place& place) {
    expect(value.is_object(), value, place, "an object");
    if (!value.contains("type")) place.fail("\"type\" is missing");
    const json& name = value["type"];
    const Place typePlace = place.member("type");
    expect(name.is_string(), name, typePlace, "a string");
    const auto type = parseEffectType(name.get_ref<const std::string&>());
    if (!type) {
        std::vector<std::string_view> names;
        names.reserve(kEffectTypeCount);
        for (int i = 0; i < kEffectTypeCount; i++) {
            names.push_back(effectName(static_cast<EffectType>(i)));
        }
        typePlace.fail("no effect is called " + shown(name) +
                       suggestion(name.get_ref<const std::string&>(), names));
    }
    return *type;
}

void readEffects(const json& value, const Place& place, Style& style) {
    expect(value.is_array(), value, place, "a list of effects");
    for (size_t i = 0; i < value.size(); i++) {
        const Place here = place.element(i);
        const EffectType type = readEffectType(value[i], here);
        for (const EffectStyle& earlier : style.effects) {
            if (earlier.type == type) {
                here.member("type").fail("a second " + std::string(effectName(type)) +
                                         "; a text has each effect at most once");
            }
        }
        EffectStyle effect = defaultEffect(type);
        readObject(value[i], here, effectFields(type), effect);
        style.effects.push_back(std::move(effect));
    }
}

void readAlign(const json& value, const Place& place, Style& style) {
    const auto align = value.is_string() ? parseAlign(value.get_ref<const std::string&>())
                                         : std::optional<Align>();
    expect(align.has_value(), value, place, "one of \"start\", \"left\", \"center\", \"right\"");
    style.align = *align;
}

void readPadding(const json& value, const Place& place, Style& style) {
    if (value.is_array()) {
        if (value.size() != 4)
            place.fail("a list of padding has 4 entries: left, top, right, bottom");
        int* const sides[] = {&style.padding.left, &style.padding.top, &style.padding.right,
                              &style.padding.bottom};
        for (size_t i = 0; i < 4; i++) {
            *sides[i] = readInteger(value[i], place.element(i), limits::kPadding);
        }
    } else {
        const int all = readInteger(value, place, limits::kPadding);
        style.padding = {all, all, all, all};
    }
}

template <std::string Style::*member>
void readStringInto(const json& value, const Place& place, Style& style) {
    style.*member = readString(value, place);
}

const Fields<Style>& styleFields() {
    static const Fields<Style> fields{
        // Editors find the schema by this; it says nothing about the text.
        {"$schema", [](const json& v, const Place& p, Style&) { readString(v, p); }},
        {"text", [](const json& v, const Place& p, Style& s) { s.text = readString(v, p); }},
        {"font", readStringInto<&Style::font>},
        {"fontIndex", &Style::fontIndex, limits::kFontIndex},
        {"size", &Style::size, limits::kFontSize},
        {"bold", &Style::bold},
        {"italic", &Style::italic},
        {"letterSpacing", &Style::letterSpacing, limits::kLetterSpacing},
        {"scaleX", &Style::scaleX, limits::kScaleX},
        {"skewX", &Style::skewX, limits::kSkewX},
        {"fontFeatures", readStringInto<&Style::fontFeatures>},
        {"locale", readStringInto<&Style::locale>},
        {"color", &Style::color},
        {"opacity", &Style::opacity, limits::kUnit},
        {"background",
         [](const json& v, const Place& p, Style& s) { s.background = readColor(v, p); }},
        {"width", [](const json& v, const Place& p,
                     Style& s) { s.width = readInteger(v, p, limits::kWidth); }},
        {"align", readAlign},
        {"padding", readPadding},
        {"lineSpacing", &Style::lineSpacing, limits::kLineSpacing},
        {"effects", readEffects},
    };
    return fields;
}

// The JSON library keeps the last of two fields with one name; a style that says two things is a
// mistake.
class DuplicateCheck {
public:
    explicit DuplicateCheck(const std::string& file) : file_(file) {}

    bool operator()(int, json::parse_event_t event, const json& parsed) {
        if (event == json::parse_event_t::object_start) {
            open_.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            open_.pop_back();
        } else if (event == json::parse_event_t::key) {
            const auto& name = parsed.get_ref<const std::string&>();
            if (!open_.back().insert(name).second) {
                throw ToolError(file_ + ": the field " + inQuotes(name) + " is given twice");
            }
        }
        return true;
    }

private:
    const std::string& file_;
    std::vector<std::set<std::string>> open_;
};

json parseJson(std::string_view text, const std::string& name) {
    try {
        return json::parse(text, DuplicateCheck(name));
    } catch (const json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 1, column 2: ..."
        const std::string what = error.what();
        const size_t bracket = what.find("] ");
        throw ToolError(name + ": " +
                        (bracket == std::string::npos ? what : what.substr(bracket + 2)));
    }
}

}  // namespace

Style parseStyle(std::string_view text, const std::string& name,
                 const std::filesystem::path& folder) {
    Style style;
    style.fontBase = folder;
    const json document = parseJson(text, name);
    readObject(document, Place{name, "$", folder}, styleFields(), style);
    return style;
}

Style loadStyle(const std::string& file) {
    const bool isStdin = file == "-";
    const std::string text = readInput(file, kMaxStyleBytes);
    return parseStyle(
        text, isStdin ? "standard input" : file,
        isStdin ? std::filesystem::path() : std::filesystem::path(file).parent_path());
}

std::vector<std::string_view> styleFieldNames() {
    return namesOf(styleFields());
}

std::vector<std::string_view> effectFieldNames(EffectType type) {
    return namesOf(effectFields(type));
}

}  // namespace gxtool
