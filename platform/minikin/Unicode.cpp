#include "minikin/Unicode.h"

#include <hb.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

namespace minikin {
namespace {

struct CodePointRange {
    uint32_t first;
    uint32_t last;
};

// Emoji_Modifier_Base of Unicode 15. ICU would load a data file for it.
constexpr CodePointRange kEmojiModifierBases[] = {
    {0x261D, 0x261D},   {0x26F9, 0x26F9},   {0x270A, 0x270D},   {0x1F385, 0x1F385},
    {0x1F3C2, 0x1F3C4}, {0x1F3C7, 0x1F3C7}, {0x1F3CA, 0x1F3CC}, {0x1F442, 0x1F443},
    {0x1F446, 0x1F450}, {0x1F466, 0x1F478}, {0x1F47C, 0x1F47C}, {0x1F481, 0x1F483},
    {0x1F485, 0x1F487}, {0x1F48F, 0x1F48F}, {0x1F491, 0x1F491}, {0x1F4AA, 0x1F4AA},
    {0x1F574, 0x1F575}, {0x1F57A, 0x1F57A}, {0x1F590, 0x1F590}, {0x1F595, 0x1F596},
    {0x1F645, 0x1F647}, {0x1F64B, 0x1F64F}, {0x1F6A3, 0x1F6A3}, {0x1F6B4, 0x1F6B6},
    {0x1F6C0, 0x1F6C0}, {0x1F6CC, 0x1F6CC}, {0x1F90C, 0x1F90C}, {0x1F90F, 0x1F90F},
    {0x1F918, 0x1F91F}, {0x1F926, 0x1F926}, {0x1F930, 0x1F939}, {0x1F93C, 0x1F93E},
    {0x1F977, 0x1F977}, {0x1F9B5, 0x1F9B6}, {0x1F9B8, 0x1F9B9}, {0x1F9BB, 0x1F9BB},
    {0x1F9CD, 0x1F9CF}, {0x1F9D1, 0x1F9DD}, {0x1FAC3, 0x1FAC5}, {0x1FAF0, 0x1FAF8},
};

bool isIdeograph(uint16_t unit) {
    return unit >= 0x3400 && unit <= 0x9FFF;
}

}  // namespace

uint32_t nextCodePoint(const U16StringPiece& text, uint32_t* offset) {
    const uint16_t* units = text.data();
    UChar32 codepoint = 0;
    U16_NEXT(units, *offset, text.size(), codepoint);
    return U_IS_SURROGATE(codepoint) ? kReplacementCharacter : static_cast<uint32_t>(codepoint);
}

bool isVariationSelector(uint32_t codepoint) {
    return (codepoint >= 0xFE00 && codepoint <= 0xFE0F) ||
           (codepoint >= 0xE0100 && codepoint <= 0xE01EF);
}

bool isCombining(uint32_t codepoint) {
    return U_GET_GC_MASK(static_cast<UChar32>(codepoint)) & U_GC_M_MASK;
}

bool isEmojiModifier(uint32_t codepoint) {
    return codepoint >= 0x1F3FB && codepoint <= 0x1F3FF;
}

bool isEmojiModifierBase(uint32_t codepoint) {
    const auto* range = std::lower_bound(
        std::begin(kEmojiModifierBases), std::end(kEmojiModifierBases), codepoint,
        [](const CodePointRange& entry, uint32_t value) { return entry.last < value; });
    return range != std::end(kEmojiModifierBases) && codepoint >= range->first;
}

bool needsNoFont(uint32_t c) {
    return c == 0x00AD || c == 0x034F || c == 0x061C || (c >= 0x200C && c <= 0x200F) ||
           (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF ||
           isVariationSelector(c);
}

bool keepsFont(uint32_t c) {
    switch (c) {
        case '!':
        case ',':
        case '-':
        case '.':
        case ':':
        case ';':
        case '?':
        case 0x00A0:  // no-break space
        case 0x2010:  // hyphen
        case 0x2011:  // non-breaking hyphen
        case 0x202F:  // narrow no-break space
        case 0x2640:  // female sign
        case 0x2642:  // male sign
        case 0x2695:  // staff of Aesculapius
            return true;
        default:
            return isCombining(c);
    }
}

uint32_t firstOfDecomposition(uint32_t codepoint) {
    hb_codepoint_t first = codepoint;
    hb_codepoint_t second = 0;
    return hb_unicode_decompose(hb_unicode_funcs_get_default(), codepoint, &first, &second)
               ? first
               : codepoint;
}

bool breaksAfter(uint16_t unit) {
    return unit == ' ' || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x3000 ||
           (unit >= 0x2066 && unit <= 0x2069) || (unit >= 0x202A && unit <= 0x202E) ||
           unit == 0x200E || unit == 0x200F;
}

bool breaksBefore(uint16_t unit) {
    return breaksAfter(unit) || isIdeograph(unit);
}

}  // namespace minikin
