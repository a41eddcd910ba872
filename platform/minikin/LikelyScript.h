// Which script a language is usually written in.
#pragma once

#include <string_view>

namespace minikin {

// Four-letter script of a lowercase two- or three-letter language, e.g. "Hant" for "zh" in "TW".
// The region may be empty. Languages the table does not list are taken to be written in Latin
// letters.
std::string_view likelyScript(std::string_view language, std::string_view region);

}  // namespace minikin
