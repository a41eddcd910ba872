// Measures lines of text exactly as they will be drawn.
#pragma once

#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>
#include <minikin/MeasuredText.h>

#include <memory>
#include <string>
#include <vector>

#include "scene/Wrap.h"

namespace gxtext {

// Pixels; boxes are relative to the line's left end and baseline, y downwards.
struct LineMetrics {
    float advance = 0.0f;
    float ascent = 0.0f;  // of the fonts in the line, negative
    float descent = 0.0f;
    float inkLeft = 0.0f;
    float inkTop = 0.0f;
    float inkRight = 0.0f;
    float inkBottom = 0.0f;
};

// Lays lines out with one paint and one list of families, as a text object does: with the direction
// and context that it uses for them.
class Measurer {
public:
    // `families` as the font manager gives them, first choice first, at least one.
    Measurer(const android::Paint& paint,
             std::vector<std::shared_ptr<minikin::FontFamily>> families, int weight, bool italic,
             std::u16string text);

    // For wrapping text(). Good as long as this object.
    TextMeasures measures() const;
    LineMetrics measure(const TextLine& line) const;

    // Whether any family has a glyph for it, or for what it decomposes into.
    bool covers(char32_t codePoint) const;
    const std::vector<std::shared_ptr<minikin::FontFamily>>& families() const { return families_; }
    // As laid out; positions in lines refer to it.
    const std::u16string& text() const { return text_; }

private:
    minikin::Layout layOut(const TextLine& line) const;

    android::Paint paint_;
    std::vector<std::shared_ptr<minikin::FontFamily>> families_;
    std::shared_ptr<const android::Typeface> typeface_;
    std::u16string text_;
    const std::unique_ptr<minikin::MeasuredText> measured_;  // text_
    std::vector<int32_t> lineBreaks_;                        // LF and CR in text_
};

}  // namespace gxtext
