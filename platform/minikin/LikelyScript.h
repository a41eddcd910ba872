// Which code of a language is in use, and which script it is usually written in.
#pragma once

#include <string_view>

namespace minikin {

// "he" for "iw" and "heb"; a lowercase code that nothing has replaced comes back.
std::string_view currentLanguage(std::string_view language);

// Four-letter script of a current language, lowercase and of two or three letters, e.g. "Hant" for
// "zh" in "TW". The region may be empty. Languages the table does not list are taken to be written
// in Latin letters.
std::string_view likelyScript(std::string_view language, std::string_view region);

}  // namespace minikin
