#include "text/ColorGlyphDrawing.h"

#include <SkColor.h>
#include <hb.h>
#include <minikin/MinikinFont.h>
#include <minikin/MinikinPaint.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <utility>

#include "raster/GxBitmap.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

struct Pixel {
    uint8_t r, g, b, a;
};

SkImageInfo colorInfo(int width, int height) {
    return SkImageInfo::Make(width, height, kRGBA_8888_SkColorType, kPremul_SkAlphaType);
}

bool isOfColors(hb_tag_t table) {
    return table == HB_TAG('C', 'O', 'L', 'R') || table == HB_TAG('C', 'B', 'D', 'T') ||
           table == HB_TAG('s', 'b', 'i', 'x');
}

// Whether any glyph of the font can have colours: most fonts have none of these tables.
bool mayHaveColors(const minikin::MinikinFont& font) {
    if (font.GetFontSize() == 0) return false;
    hb_blob_t* bytes = hb_blob_create(static_cast<const char*>(font.GetFontData()),
                                      static_cast<unsigned>(font.GetFontSize()),
                                      HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(bytes, static_cast<unsigned>(font.GetFontIndex()));
    hb_blob_destroy(bytes);
    // What HarfBuzz gives when it has no memory.
    if (bytes == hb_blob_get_empty() || face == hb_face_get_empty()) throw std::bad_alloc();
    hb_tag_t tags[32];
    bool may = false;
    for (unsigned first = 0, count = std::size(tags); !may && count > 0; first += count) {
        count = std::size(tags);
        hb_face_get_table_tags(face, first, &count, tags);
        may = std::any_of(tags, tags + count, isOfColors);
    }
    hb_face_destroy(face);
    return may;
}

// Only the portable canvas has to be told.
template <typename Font>
void askForColors(Font& font) {
    if constexpr (requires { font.setColorGlyphs(true); }) font.setColorGlyphs(true);
}

// The pixels of a mask that a glyph can reach.
GxRect reachOf(const minikin::MinikinRect& ink, float x, float y, float size, LayoutCorner corner,
               const GxGlyph& mask) {
    // Layout measures whole sizes, drawing does not cut them; positions are rounded.
    const float whole = std::max(std::floor(size), 1.0f);
    const float longest = std::max(
        {std::fabs(ink.mLeft), std::fabs(ink.mTop), std::fabs(ink.mRight), std::fabs(ink.mBottom)});
    const float margin = 2 + longest / whole;
    const auto place = [](float edge, int extent) { return std::clamp(toInt(edge), 0, extent); };
    const float left = x - corner.left;
    const float top = y - corner.top;
    return {place(std::floor(left + ink.mLeft - margin), mask.width),
            place(std::floor(top + ink.mTop - margin), mask.height),
            place(std::ceil(left + ink.mRight + margin), mask.width),
            place(std::ceil(top + ink.mBottom + margin), mask.height)};
}

// Looks at each glyph of fonts that may have colours: it has some unless white text draws it in
// white and black text in black.
class Search {
public:
    Search(const minikin::Layout& layout, const android::Paint& paint,
           const android::Typeface& typeface, const GxGlyph& mask, LayoutCorner corner)
        : layout_(layout),
          paint_(paint),
          measuring_(android::MinikinUtils::prepareMinikinPaint(&paint, &typeface)),
          mask_(mask),
          corner_(corner),
          colored_(layout.nGlyphs()) {}

    void operator()(size_t start, size_t end) {
        const int first = static_cast<int>(start);
        if (!mayHaveColors(*layout_.getFont(first))) return;
        for (size_t i = start; i < end; ++i) {
            const int glyph = static_cast<int>(i);
            minikin::MinikinRect ink;
            layout_.getFont(first)->GetBounds(&ink, layout_.getGlyphId(glyph), measuring_,
                                              layout_.getFakery(first));
            const GxRect reach = reachOf(ink, layout_.getX(glyph), layout_.getY(glyph),
                                         paint_.getSkFont().getSize(), corner_, mask_);
            if (reach.isEmpty() || !hasColors(i, reach)) continue;
            colored_[i] = true;
            box_ = box_.isEmpty()
                       ? reach
                       : GxRect(std::min(box_.left, reach.left), std::min(box_.top, reach.top),
                                std::max(box_.right, reach.right),
                                std::max(box_.bottom, reach.bottom));
        }
    }

    const GlyphChoice& colored() const { return colored_; }
    // Of all of them, in the mask; empty when there are none.
    const GxRect& box() const { return box_; }

private:
    bool hasColors(size_t glyph, const GxRect& reach) {
        return draws(glyph, reach, SK_ColorWHITE,
                     [](const Pixel& p) { return p.r != p.a || p.g != p.a || p.b != p.a; }) ||
               draws(glyph, reach, SK_ColorBLACK,
                     [](const Pixel& p) { return p.r != 0 || p.g != 0 || p.b != 0; });
    }

    template <typename Kind>
    bool draws(size_t glyph, const GxRect& reach, SkColor color, Kind kind) {
        scratch_.assign(size_t{reach.width()} * reach.height(), Pixel{});
        const SkImageInfo info =
            colorInfo(saturateInt(int64_t{reach.width()}), saturateInt(int64_t{reach.height()}));
        SkBitmap bitmap;
        if (!bitmap.installPixels(info, scratch_.data(), size_t{reach.width()} * sizeof(Pixel))) {
            return false;
        }
        SkCanvas canvas(bitmap);
        android::Paint colored(paint_);
        colored.setColor(color);
        minikin::MinikinRect ink;
        layout_.getBounds(&ink);
        const LayoutCorner corner = {corner_.left + static_cast<float>(reach.left),
                                     corner_.top + static_cast<float>(reach.top)};
        const SkRect bounds = SkRect::MakeLTRB(ink.mLeft, ink.mTop, ink.mRight, ink.mBottom);
        DrawTextFunctor{layout_, canvas, colored, bounds, corner}(glyph, glyph + 1);
        return std::any_of(scratch_.begin(), scratch_.end(), kind);
    }

    const minikin::Layout& layout_;
    const android::Paint& paint_;  // of the run, with its font
    const minikin::MinikinPaint measuring_;
    const GxGlyph& mask_;
    LayoutCorner corner_;
    GlyphChoice colored_;
    GxRect box_;
    std::vector<Pixel> scratch_;
};

}  // namespace

void askForColorGlyphs(android::Paint& paint) {
    askForColors(paint.getSkFont());
}

std::unique_ptr<ColorGlyphs> ColorGlyphDrawing::draw(const minikin::Layout& layout,
                                                     android::Paint& paint, const GxGlyph& mask,
                                                     LayoutCorner corner) const {
    Search search(layout, paint, typeface_, mask, corner);
    android::MinikinUtils::forFontRun(layout, &paint, search);
    if (search.box().isEmpty()) return nullptr;

    auto colors = std::make_unique<ColorGlyphs>();
    colors->box = search.box();
    colors->pixels = std::make_unique<PlaneBitmap>(mask.width, mask.height, 4);
    const GxBitmap& pixels = *colors->pixels->get();
    if (!pixels.data) throw std::bad_alloc();
    colors->pixels->setPainted(search.box());
    GlyphChoice choice = search.colored();
    android::Paint inTextColor(paint);
    inTextColor.setColor(textColor_);
    drawGlyphs(layout, inTextColor, corner, &choice, colorInfo(mask.width, mask.height),
               pixels.data);

    colors->letters = std::make_unique<uint8_t[]>(size_t{mask.width} * mask.height);
    choice.flip();
    drawGlyphs(layout, paint, corner, &choice, SkImageInfo::MakeA8(mask.width, mask.height),
               colors->letters.get());
    return colors;
}

}  // namespace GxFontEffect
