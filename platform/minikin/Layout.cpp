#include "minikin/Layout.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <cmath>

#include "minikin/BidiRuns.h"
#include "minikin/PieceShaper.h"
#include "minikin/Unicode.h"

namespace minikin {
namespace {

// Larger values, and what is not a number at all, are answered with something finite: positions
// stay within what floats tell apart.
constexpr float kMaxSize = 1 << 20;
constexpr float kMaxFactor = 1 << 10;
constexpr float kMaxSpacing = 1 << 21;

float bounded(float value, float limit) {
    return std::isfinite(value) ? std::clamp(value, -limit, limit) : 0.0f;
}

MinikinPaint withFiniteNumbers(const MinikinPaint& paint) {
    MinikinPaint result = paint;
    result.size = std::max(bounded(paint.size, kMaxSize), 0.0f);
    result.scaleX = bounded(paint.scaleX, kMaxFactor);
    result.skewX = bounded(paint.skewX, kMaxFactor);
    result.letterSpacing = bounded(paint.letterSpacing, kMaxSpacing);
    result.wordSpacing = bounded(paint.wordSpacing, kMaxSpacing);
    return result;
}

// HarfBuzz looks back over all marks for each mark: what has no end is shaped in parts, so that the
// time stays in proportion to the length.
constexpr uint32_t kMaxPieceLength = 1024;

bool isWordBoundary(const U16StringPiece& text, uint32_t i) {
    return i == 0 || i >= text.size() || breaksBefore(text[i]) || breaksAfter(text[i - 1]);
}

// HarfBuzz looks at five characters before what it shapes.
constexpr uint32_t kShapingContext = 5 * U16_MAX_LENGTH;

// Where the words begin that the range touches, plus the end of the last one. A word that begins
// before the range counts from what shaping looks at.
std::vector<uint32_t> wordBoundaries(const U16StringPiece& text, const Range& range) {
    uint32_t i = range.getStart();
    while (!isWordBoundary(text, i) && range.getStart() - i < kShapingContext) i--;
    if (i > 0 && U16_IS_TRAIL(text[i])) i--;
    std::vector<uint32_t> boundaries = {i};
    while (boundaries.back() < range.getEnd()) {
        do i++;
        while (!isWordBoundary(text, i));
        boundaries.push_back(i);
    }
    return boundaries;
}

struct Piece {
    Range range;
    Range word;  // around it
};

// Where to end a piece that begins at `start` and would reach to `end`: before a character that is
// unlikely to belong to the one before it.
uint32_t pieceEnd(const U16StringPiece& text, uint32_t start, uint32_t end) {
    constexpr uint16_t kZeroWidthJoiner = 0x200D;
    if (end - start <= kMaxPieceLength) return end;
    const uint32_t limit = start + kMaxPieceLength;
    for (uint32_t cut = limit; cut > start + kMaxPieceLength / 2; cut--) {
        const uint16_t before = text[cut - 1];
        uint32_t next = cut;
        const bool attaches = U16_IS_TRAIL(text[cut]) || isCombining(nextCodePoint(text, &next));
        if (!attaches && !isCombining(before) && before != kZeroWidthJoiner) return cut;
    }
    return U16_IS_TRAIL(text[limit]) ? limit - 1 : limit;
}

// The run cut at words, in the order of reading the glyphs from left to right.
std::vector<Piece> piecesOfRun(const U16StringPiece& text, const std::vector<uint32_t>& boundaries,
                               const BidiRun& run) {
    std::vector<Piece> pieces;
    auto wordEnd = std::upper_bound(boundaries.begin(), boundaries.end(), run.range.getStart());
    for (uint32_t start = run.range.getStart(); start < run.range.getEnd(); ++wordEnd) {
        const Range word(*(wordEnd - 1), *wordEnd);
        const uint32_t end = std::min(word.getEnd(), run.range.getEnd());
        while (start < end) {
            const uint32_t cut = pieceEnd(text, start, end);
            pieces.push_back({Range(start, cut), word});
            start = cut;
        }
    }
    if (run.isRtl) std::reverse(pieces.begin(), pieces.end());
    return pieces;
}

}  // namespace

Layout::Layout(const U16StringPiece& text, const Range& range, Bidi bidiFlags,
               const MinikinPaint& paint) {
    const uint32_t end = std::min(range.getEnd(), text.size());
    const Range inside(std::min(range.getStart(), end), end);
    mAdvances.resize(inside.getLength());
    if (inside.isEmpty() || !paint.font || paint.font->getFamilies().empty()) return;

    const MinikinPaint finitePaint = withFiniteNumbers(paint);
    const std::vector<uint32_t> boundaries = wordBoundaries(text, inside);
    PieceShaper shaper(finitePaint);
    for (const BidiRun& run : visualRuns(text, inside, bidiFlags)) {
        for (const Piece& piece : piecesOfRun(text, boundaries, run)) {
            const uint32_t start = piece.range.getStart();
            const uint32_t wordStart = piece.word.getStart();
            const Range inWord(start - wordStart, piece.range.getEnd() - wordStart);
            const bool isSpace = inWord.getLength() == 1 && text[start] == ' ';
            appendPiece(*shaper.shape(text.substr(piece.word), inWord, run.isRtl),
                        start - inside.getStart(), isSpace ? finitePaint.wordSpacing : 0.0f);
        }
    }
}

void Layout::appendPiece(const LayoutPiece& piece, uint32_t outOffset, float extraAdvance) {
    for (const LayoutGlyph& glyph : piece.glyphs) {
        mGlyphs.emplace_back(glyph.font, glyph.glyph_id, mAdvance + glyph.x, glyph.y);
    }
    std::copy(piece.advances.begin(), piece.advances.end(), mAdvances.begin() + outOffset);
    mAdvances[outOffset] += extraAdvance;

    MinikinRect bounds = piece.bounds;
    bounds.offset(mAdvance, 0.0f);
    mBounds.join(bounds);
    mAdvance += piece.advance + extraAdvance;
}

}  // namespace minikin
