// How much of the text around a line decides how it is laid out.
#pragma once

#include <minikin/Layout.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "Wrap.h"

namespace gxtool {

// Text from `start` to the end of the line, laid out in that direction.
struct LineContext {
    int32_t start = 0;
    minikin::Bidi bidi = minikin::Bidi::DEFAULT_LTR;
};

// The contexts of all lines of one text. Made in time linear in the text; a context takes
// logarithmic time, but for what it skips.
class LineContexts {
public:
    explicit LineContexts(std::u16string_view text);

    // From the last LF or CR, which is part of it, or from the start of the text: the context that
    // a text object uses.
    LineContext whole(const TextLine& line) const;

    // A later start that gives the line the same runs in the same visual order, and the same
    // glyphs, as the whole context; that one where none is known. That is inside of embeddings and
    // isolates, and behind letters against the paragraph's direction as long as none of its
    // direction follows.
    LineContext shortest(const TextLine& line) const;

private:
    // A character from which on nothing depends on what is before it but through the paragraph's
    // level. Without a level the paragraph has no strong character before.
    struct Cut {
        int32_t at;
        std::optional<bool> rightToLeft;
    };
    // Two places that depend on each other, as paired brackets do, when a text has both.
    struct Span {
        int32_t first;
        int32_t last;
    };
    class Scan;

    bool isPlain(const Cut& cut, const TextLine& line) const;
    const Cut& latestCut(int32_t limit) const;
    const Cut& cutOutsideSpans(const Cut& cut, int32_t end) const;

    // All in the order of the text.
    std::vector<int32_t> lineBreaks_;  // LF and CR
    std::vector<int32_t> separators_;  // of bidi paragraphs, line breaks included
    std::vector<Cut> cuts_;            // the first one at 0
    std::vector<Span> spans_;          // by their last place
    std::vector<int32_t> brackets_;
    std::vector<int32_t> controls_;     // explicit directional formatting, and Arabic numbers
    std::vector<int32_t> leftToRight_;  // L, and numbers, whose level is even
    std::vector<int32_t> rightToLeft_;  // R and AL
};

}  // namespace gxtool
