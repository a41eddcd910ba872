// The one table of the format's fields: the reader, the writer, the schema, the manual, the help of
// the command line and the editors' controls follow from it or are tested against it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "GxExport.h"
#include "style/Style.h"

namespace gxtext {

// The shortest decimal of the float nearest to the value, whatever the process's locale.
GXTEXT_API std::string shortText(double value);

// Closed interval.
struct GXTEXT_API Range {
    double min = 0;
    double max = 0;

    // False for NaN.
    bool contains(double value) const { return value >= min && value <= max; }
    // "0-100", or "-360 to 360" when a sign would blur into the dash.
    std::string text() const;
};

enum class Unit { kNone, kPixels, kDegrees, kEm };

// What an editor best shows.
enum class Control {
    kNone,
    kText,
    kFont,
    kFile,
    kNumber,
    kSlider,
    kAngle,
    kSwitch,
    kMenu,
    kColor,
    kSides,
    kRamp,
    kEffects,
    kFill,
    kBox,
};

enum class FieldType {
    kString,
    kNumber,
    kInteger,
    kBoolean,
    kColor,
    kChoice,
    kPadding,
    kStops,
    kEffects,
    kFill,
    kBackground,
};

// A set of effect types.
class EffectSet {
public:
    constexpr EffectSet() = default;
    constexpr EffectSet(std::initializer_list<EffectType> types) {
        for (const EffectType type : types) bits_ |= bit(type);
    }
    static constexpr EffectSet all() {
        EffectSet set;
        set.bits_ = (1u << kEffectTypeCount) - 1;
        return set;
    }
    constexpr bool contains(EffectType type) const { return (bits_ & bit(type)) != 0; }

private:
    static constexpr uint32_t bit(EffectType type) { return 1u << static_cast<int>(type); }
    uint32_t bits_ = 0;
};

// An enumeration by the names of its values, which count from 0.
template <typename T>
struct Choice {
    std::span<const std::string_view> names;
    int (*get)(const T&);
    void (*set)(T&, int);
};

// Where a field of a T goes. Nothing for the two that are no settings: the reader knows them.
template <typename T>
using Target =
    std::variant<std::monostate, float T::*, int T::*, bool T::*, Color T::*, std::string T::*,
                 std::optional<std::string> T::*, std::optional<Color> T::*,
                 std::optional<int> T::*, Padding T::*, std::vector<Stop> T::*,
                 std::vector<Effect> T::*, Fill T::*, std::optional<Background> T::*, Choice<T>>;

// What a file gets that leaves the field out: nothing, a number, a switch, a colour, or a string
// or the name of a choice.
using Initial = std::variant<std::monostate, double, bool, Color, std::string_view>;

// One row.
template <typename T>
struct Field {
    std::string_view name;
    Target<T> target{};
    EffectSet effects{};  // that have it; for fields of an Effect
    Range range{};        // of numbers, or of each side of a padding
    Initial initial{};
    Unit unit = Unit::kNone;
    Control control = Control::kNone;
    std::string_view meaning{};  // one sentence, without the unit and the full stop
    bool required = false;
    double longest =
        0;  // of a length, scaled: what its filter or the layout takes; 0 for no length
    // For strings: what is wrong with one, or nothing.
    std::optional<std::string> (*check)(std::string_view) = nullptr;
};

// In the order in which they are written and documented.
GXTEXT_API const std::vector<Field<Style>>& styleFields();
GXTEXT_API const std::vector<Field<Effect>>& effectFields();
GXTEXT_API const std::vector<Field<Stop>>& stopFields();
GXTEXT_API const std::vector<Field<Background>>& backgroundFields();
// The rows of one type of effect.
GXTEXT_API const std::vector<const Field<Effect>*>& effectFields(EffectType type);

// The row of that name, which there must be.
GXTEXT_API const Field<Style>& styleField(std::string_view name);

// "Outline along the glyphs' edges": one sentence per type of effect.
GXTEXT_API std::string_view effectMeaning(EffectType type);

// The effects that a stroke can be filled with.
constexpr EffectSet kFills{EffectType::kLinearGradient, EffectType::kRadialGradient,
                           EffectType::kPattern};

constexpr int kMaxStops = 256;
constexpr int kMaxEffects = 256;  // of a style

template <typename T>
FieldType typeOf(const Field<T>& field) {
    // By the alternatives of Target.
    constexpr FieldType types[] = {FieldType::kString,  FieldType::kNumber,     FieldType::kInteger,
                                   FieldType::kBoolean, FieldType::kColor,      FieldType::kString,
                                   FieldType::kString,  FieldType::kColor,      FieldType::kInteger,
                                   FieldType::kPadding, FieldType::kStops,      FieldType::kEffects,
                                   FieldType::kFill,    FieldType::kBackground, FieldType::kChoice};
    return types[field.target.index()];
}

}  // namespace gxtext
