// A text of which many ranges are laid out.
#pragma once

#include <cutils/compiler.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "minikin/Layout.h"
#include "minikin/Range.h"
#include "minikin/U16StringPiece.h"

namespace minikin {

// A text that ends with the range and gives it the layout that it has in another, longer one.
struct ShortContext {
    std::vector<uint16_t> text;
    Range range;
};

// Remembers what the text before a line decides about it, so that the time for a line does not grow
// with what is before it. Not to be used from two threads at once.
class ANDROID_API MeasuredText {
public:
    // Copies the text.
    explicit MeasuredText(const U16StringPiece& text);
    MeasuredText(const MeasuredText&) = delete;
    MeasuredText& operator=(const MeasuredText&) = delete;
    ~MeasuredText();

    const std::vector<uint16_t>& text() const { return mText; }

    // The range must lie inside the text, behind `contextStart`, where the text or a line break
    // begins. None when it has to be laid out in the whole context from there to its end.
    std::optional<ShortContext> shortContext(uint32_t contextStart, const Range& range,
                                             Bidi bidiFlags);

private:
    class Reader;

    const std::vector<uint16_t> mText;
    std::unique_ptr<Reader> mReader;
};

// Of a range in the text from `contextStart` to its end; `measured`, unless null, is of the text.
// Without it the text of the layout before is remembered, by thread, up to a size.
std::optional<ShortContext> shortContext(MeasuredText* measured, const U16StringPiece& text,
                                         uint32_t contextStart, const Range& range, Bidi bidiFlags);

}  // namespace minikin
