// Breaks a text into lines.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gxtext {

// UTF-8 to UTF-16. Throws TextError for malformed input and for U+0000, which would end the text
// early; `name` says in the message where the text came from.
std::u16string decodeUtf8(std::string_view utf8, const std::string& name);
std::string encodeUtf8(std::u16string_view utf16);

// The code points in order; a lone surrogate stands for itself.
std::vector<char32_t> codePoints(std::u16string_view text);

// UTF-16 positions of one line. Line breaks are not part of any line, nor the spaces that a wrap
// leaves at its end: they hang.
struct TextLine {
    int32_t start = 0;
    int32_t end = 0;
    bool rightToLeft = false;  // its paragraph's first strong character is
    bool operator==(const TextLine&) const = default;
};

// How wide text is, in pixels, laid out as part of its paragraph.
struct TextMeasures {
    // Of the line, as it will be drawn.
    std::function<float(const TextLine&)> advance;
    // Of each unit between start and end of a paragraph on a single line. Lines of it are about as
    // wide as the sum of theirs; what is at their ends may be shaped in another way.
    std::function<std::vector<float>(const TextLine& paragraph)> advances;
};

// Lines split at LF, CR, CRLF, NEL, VT, FF, U+2028 and U+2029. With a width, lines that are longer
// continue on the next one after the last line-break opportunity that fits, words longer than a
// line between any two characters. A text that ends with a line break has an empty last line.
// `locale` (BCP 47, may be empty) tunes the break rules. Each paragraph is measured once, and of
// each line a few candidates around its end.
std::vector<TextLine> wrapText(std::u16string_view text, std::optional<float> width,
                               const std::string& locale, const TextMeasures& measures);

}  // namespace gxtext
