// Properties of code points that font choice and layout ask for.
#pragma once

#include <cstdint>

#include "minikin/U16StringPiece.h"

namespace minikin {

constexpr uint32_t kReplacementCharacter = 0xFFFD;
constexpr uint32_t kTextStyleSelector = 0xFE0E;
constexpr uint32_t kEmojiStyleSelector = 0xFE0F;

// The code point at *offset, which moves behind it. Lone surrogates read as U+FFFD.
uint32_t nextCodePoint(const U16StringPiece& text, uint32_t* offset);
inline uint32_t utf16Length(uint32_t codepoint) {
    return codepoint > 0xFFFF ? 2 : 1;
}

bool isVariationSelector(uint32_t codepoint);
// Spacing, enclosing and other marks.
bool isCombining(uint32_t codepoint);
bool isEmojiModifier(uint32_t codepoint);
// Emoji that a skin tone may follow.
bool isEmojiModifierBase(uint32_t codepoint);

// Invisible characters that never choose a font.
bool needsNoFont(uint32_t codepoint);
// Characters that stay in the font before them if it has them, as marks do.
bool keepsFont(uint32_t codepoint);

// First code point of the canonical decomposition; the code point itself when there is none.
uint32_t firstOfDecomposition(uint32_t codepoint);

// Spaces and bidi controls, which are words of their own; and ideographs, each beginning a word.
bool breaksBefore(uint16_t unit);
bool breaksAfter(uint16_t unit);

}  // namespace minikin
