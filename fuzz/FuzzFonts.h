// The fonts that the targets draw with: made up, small, one for each kind of script and glyph.
#pragma once

#include <memory>
#include <vector>

#include "minikin/FontFamily.h"
#include "platform/SfntFile.h"

namespace gxfuzz {

using gxtest::Bytes;

enum FontKind : int {
    kLatin,       // kerning, a ligature, composites, marks placed by the font
    kBoldLatin,   // the same letters at weight 700
    kArabic,      // joining forms
    kIndic,       // Devanagari and Thai without rules of their own
    kIdeographs,  // Han, kana and Hangul
    kColor,       // emoji of layers
    kPictures,    // emoji of bitmaps at one size
    kGrowing,     // one glyph becomes many, several times over
    kGraphs,      // emoji of graphs of paints, and one in a circle
    kFontKinds,
};

// The font file, made once and kept to the end of the program.
const Bytes& fontFile(FontKind kind);

// A family of the font at this index of a file, whose bytes are borrowed; null when it is no font.
std::shared_ptr<minikin::FontFamily> loadFamily(const Bytes& file, int index);

// A family of this font alone, made once.
std::shared_ptr<minikin::FontFamily> fontFamily(FontKind kind);

// Text that touches what the fonts have to offer; also what the seeds are made of.
inline constexpr const char16_t* kSampleTexts[] = {
    u"fi\u00E9 A\u0301V",
    u"\u0628\u0644\u0627 \u0645\u064E\u062D",
    u"\u0915\u094D\u0937\u093F \u0E01\u0E34",
    u"\u4E00\u3042\uAC00 \u4E01\U000E0100",
    u"\U0001F600\uFE0F\u200D\U0001F601\u2764\uFE0E",
    u"\xD83D"
    u"a\xDE00\u202E\u05D0"
    u"1\u2066",
};

}  // namespace gxfuzz
