// Draws the lines of a text object into coverage masks and drives the effect stack over them.
#pragma once

#include <memory>
#include <vector>

#include "GxExport.h"

namespace minikin {
class FontFamily;
}

namespace GxFontEffect {

class GxBitmap;
class GxEffect;
class GxRect;
class GxString;
class GxTextObject;
class List;

// Layout comes from the platform's text stack, rasterising from Skia. Each line becomes one 8-bit
// mask as wide as its advance and as high as its ink, so that the effects run on the smallest
// bitmap. Not locked.
class GXTEXT_API GxFontDrawing {
public:
    GxFontDrawing();
    GxFontDrawing(const GxFontDrawing&) = delete;
    GxFontDrawing& operator=(const GxFontDrawing&) = delete;
    virtual ~GxFontDrawing();

    // Font file of the text; null is ignored. False, and the earlier one kept, when memory runs out
    // (error 7); the same for the family.
    bool SetFontPath(const char* path);
    bool SetFontFamilyName(const char* name);
    // Families to draw with instead of the font manager's, and the weight to choose among their
    // fonts; an empty list for the font manager's.
    void SetFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>> families, int weight);
    bool HasFontFamilies() const { return !ownFamilies.empty(); }

    // Renders the text's lines and effects into `destination`, a zero-filled 32-bit bitmap. Moves
    // each line's background box by the effect margins and sets its width to the line's advance. A
    // missing text, effect stack or font is logged and leaves the destination as it is.
    //
    // False when memory ran out: the destination is not the picture then, and the boxes of some
    // lines have moved. Throws std::bad_alloc as well, as the text stack does.
    bool DrawTextEffect(GxTextObject* text, GxBitmap* destination);

    // Box of the lines' ink in the view's pixels, empty when there is none or nothing to draw it
    // with. False when memory ran out; throws std::bad_alloc as well.
    bool MeasureInk(const GxTextObject* text, GxRect* ink);

    // Hands the masks of `glyphs` to the stack, pen at (x, y) in 26.6 fixed point, last mask first
    // for a negative direction.
    void _DoRender(int x, int y, List* glyphs, GxEffect* effect, int direction);

    // Deletes all masks.
    void ClearGlyphList();

private:
    // Lays out the lines, their pens moved by (left, top), and calls use(lines, paint, typeface);
    // its answer, or false when memory ran out, true when there is nothing to draw with.
    template <typename Use>
    bool withLines(const GxTextObject* text, int left, int top, Use use);
    bool drawLines(GxTextObject* text, GxEffect* effect);

    bool collectFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& families,
                         int& weight) const;

    std::unique_ptr<GxString> familyName;
    std::unique_ptr<GxString> fontPath;
    std::vector<std::shared_ptr<minikin::FontFamily>> ownFamilies;
    int ownWeight = 0;
    std::unique_ptr<List> glyphList;  // of owned GxGlyph
};

}  // namespace GxFontEffect
