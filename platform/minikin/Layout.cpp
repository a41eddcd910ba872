#include "minikin/Layout.h"

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

// Where words begin, plus the end of the text.
std::vector<uint32_t> wordBoundaries(const U16StringPiece& text) {
    std::vector<uint32_t> boundaries = {0};
    for (uint32_t i = 1; i < text.size(); i++) {
        if (breaksBefore(text[i]) || breaksAfter(text[i - 1])) boundaries.push_back(i);
    }
    boundaries.push_back(text.size());
    return boundaries;
}

// The word around each piece of the run, in the order of reading the glyphs from left to right. A
// piece is what the run has of the word.
std::vector<Range> wordsOfRun(const std::vector<uint32_t>& boundaries, const BidiRun& run) {
    std::vector<Range> words;
    auto end = std::upper_bound(boundaries.begin(), boundaries.end(), run.range.getStart());
    for (; end != boundaries.end() && *(end - 1) < run.range.getEnd(); ++end) {
        words.emplace_back(*(end - 1), *end);
    }
    if (run.isRtl) std::reverse(words.begin(), words.end());
    return words;
}

}  // namespace

Layout::Layout(const U16StringPiece& text, const Range& range, Bidi bidiFlags,
               const MinikinPaint& paint) {
    const uint32_t end = std::min(range.getEnd(), text.size());
    const Range inside(std::min(range.getStart(), end), end);
    mAdvances.resize(inside.getLength());
    if (inside.isEmpty() || !paint.font || paint.font->getFamilies().empty()) return;

    const MinikinPaint finitePaint = withFiniteNumbers(paint);
    const std::vector<uint32_t> boundaries = wordBoundaries(text);
    PieceShaper shaper(finitePaint);
    for (const BidiRun& run : visualRuns(text, inside, bidiFlags)) {
        for (const Range& word : wordsOfRun(boundaries, run)) {
            const Range piece = Range::intersection(word, run.range);
            const Range pieceInWord(piece.getStart() - word.getStart(),
                                    piece.getEnd() - word.getStart());
            const bool isSpace = piece.getLength() == 1 && text[piece.getStart()] == ' ';
            appendPiece(shaper.shape(text.substr(word), pieceInWord, run.isRtl),
                        piece.getStart() - inside.getStart(),
                        isSpace ? finitePaint.wordSpacing : 0.0f);
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
