// The grammars of a style's strings. Each check gives what is wrong, or nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "GxExport.h"

namespace gxtext {

// OpenType features as the shaper takes them, comma-separated, for the whole text:
//   feature = [ "+" | "-" ] tag [ [ "=" ] value ]     spaces may stand between the parts
//   tag     = 1-4 letters, digits or "_", or exactly four characters in ' or "
//   value   = a whole number below 2^32, "on" or "off"
// An empty string has none.
GXTEXT_API std::optional<std::string> checkFontFeatures(std::string_view features);

// BCP 47 tags, comma-separated, without spaces: well-formed by the grammar of RFC 5646, with a
// language of two or three letters (longer ones are reserved, and none is registered). An empty
// string has none.
GXTEXT_API std::optional<std::string> checkLocale(std::string_view tags);

// Where a variable font is on one of its axes.
struct AxisSetting {
    std::string tag;  // four characters
    float value = 0.0f;
};

// Axis settings, comma-separated: a tag of four letters, digits or "_", in ' or " or bare, and a
// number, with "=" between them or not: 'wght' 650, wdth=80. Nothing for anything else.
GXTEXT_API std::optional<std::vector<AxisSetting>> parseFontVariations(std::string_view text);
GXTEXT_API std::optional<std::string> checkFontVariations(std::string_view text);

// A path that is not empty.
GXTEXT_API std::optional<std::string> checkPatternPath(std::string_view path);

}  // namespace gxtext
