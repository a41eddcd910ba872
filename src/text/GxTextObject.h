// The native side of one text widget: text, font, paint, view, lines and effects in, pixels out.
#pragma once

#include <hwui/Paint.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "GxExport.h"
#include "raster/GxBitmap.h"

namespace minikin {
class FontFamily;
}

namespace GxFontEffect {

class GxEffect;
class GxFontDrawing;
class GxRect;
class GxString;
class GxTextObjectImpl;
class GxView;
class List;

// How background boxes are drawn.
struct GxBackgroundShape {
    int radius = 0;        // of the corners, pixels; at most half of the shorter side counts
    int padding = 0;       // pixels by which a box is larger on each side; cut by the image only
    bool isBlock = false;  // one box around those of all lines

    bool isPlain() const { return radius <= 0 && padding == 0 && !isBlock; }
};

// In short:
//
//   GxTextObject text;
//   text.Construct();
//   if (!text.SetFont(argv[1])) return fprintf(stderr, "cannot load %s\n", argv[1]), 1;
//   text.SetText(&string);
//   text.SetTextColor(0xFFD04010);
//   text.SetPaint(paint);      // size, antialiasing, letter spacing, ...
//   text.SetLineInfo(&lines);  // one GxLineInfo per line: where it stands, which characters
//   text.GetEffect()->addStrokeText(6, 0xFF102040, 1.0f, 0, GxStrokeProperty::kOutside);
//   GxView& view = *text.GetView();
//   view.SetSize(900, 140);
//   text.FitBitmapToView();  // the view, and room for the effects around it
//   const int width = view.GetBitmapWidth(), height = view.GetBitmapHeight();
//   const uint32_t* pixels = text.RenderTextEffect(width, height);  // 0xAARRGGBB, straight alpha
//
// Built in two steps: the constructor cannot fail, Construct() can. Every operation on an
// unconstructed object logs, records error 8 and returns false, null, -1 or what is said at the
// operation; a null argument is error 7. Objects register themselves and may also be deleted by the
// registry (GxTextInstanceManager) when their last binding is released. One thread at a time;
// objects on different threads may share fonts.
class GXTEXT_API GxTextObject {
public:
    GxTextObject();
    GxTextObject(const GxTextObject&) = delete;
    GxTextObject& operator=(const GxTextObject&) = delete;
    virtual ~GxTextObject();

    // False with error 4 when called twice.
    bool Construct();

    // Lays out, draws and composes the text into a new image of width x height pixels and returns
    // its pixels: 0xAARRGGBB words, straight alpha, rows packed. They belong to the object and stay
    // valid until the next render or the object's end. The padding clip comes from the view and its
    // bitmap size. Without a font drawing (error 8), for sizes below 0 and when memory runs out
    // anywhere on the way (error 7) the previous frame's pixels are returned, null if there are
    // none, and the lines' background boxes are as before.
    const uint32_t* RenderTextEffect(int width, int height);

    // The same into pixels of the caller's, width x height words that are all 0 before; the
    // object's own image stays. False where RenderTextEffect gives the previous frame, and then the
    // pixels are not the picture.
    bool RenderTextEffectInto(uint32_t* pixels, int width, int height);

    // Renders keep the memory that they no longer need for the next ones, of any object: at most
    // 96 MiB in the process. This gives it back to the allocator, on any thread and at any time.
    static void ReleaseKeptPlanes();

    // Sizes the view's bitmap (GxView::GetBitmapWidth and -Height) to the view and the margins of
    // the effects: what a render needs so that no effect is cut. Wanted after every change of the
    // view's size or of the effects, and with whole ink of text, lines, font or paint. False with
    // error 7, and nothing stored, when a side exceeds 2^31 - 1 or memory runs out.
    bool FitBitmapToView();

    // The image of the last render that succeeded, owned by the object like its pixels; null when
    // there was none. Another object after each of them.
    const GxBitmap* GetResultBitmap() const;

    // The registry's handle, 1 or more; -1 before Construct.
    int GetRuntimeHandle() const;

    // The object that has this handle, or null.
    static GxTextObject* FindGxTextObject(int handle);

    // Copies the text; null drops the stored one. Loads the system families for its scripts. False,
    // and the earlier text kept, when memory runs out (error 7), like the setters below.
    bool SetText(const GxString* text);
    bool SetText(const wchar_t* text);
    // Text of this many characters, NUL and U+FFFF among them like any other (see
    // GxString::Set(const wchar_t*, int)). A negative length is error 7.
    bool SetText(const wchar_t* text, int length);
    // Owned by the object, null when there is no text.
    GxString* GetText() const;
    // Registers a locale list for every script of the text and loads one not yet loaded family for
    // each. Error 7 when memory runs out.
    void SetTextLocaleListId();

    // The family that was asked for by name; chooses among weights only.
    bool SetFontFamilyName(const char* name);
    // Font file, loaded once per process. False, without an error code, when it cannot be.
    bool SetFont(const char* path);
    // Font bytes under the name `path`. `data` is an array made with new[] and passes to the font
    // manager whatever the outcome, but for a null path (error 7) and an unconstructed object.
    bool SetFont(const char* path, char* data, unsigned size);
    // Lays out with these families alone, in order of preference, the first of them first; the
    // process's families and a font set above do not take part, and SetText loads none. `weight`
    // (1-1000) chooses among the fonts of a family, as italic does (SetTextStyle). The families are
    // shared: objects on other threads may use them too. An empty list goes back to the process's.
    bool SetFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>> families, int weight);
    GxFontDrawing* GetFont() const;

    // Takes over the GxLineInfo records of `lines` (each made with new); the list itself stays the
    // caller's. Earlier records are deleted. False takes and deletes none.
    bool SetLineInfo(const List* lines);
    // Owned by the object.
    List* GetLineInfo() const;

    bool SetTextStyle(bool bold, bool italic);
    bool isBoldTextStyle() const;
    bool isItalicTextStyle() const;

    // Owned by the object.
    GxEffect* GetEffect() const;
    GxView* GetView() const;

    // A copy; of a default paint before Construct and when memory runs out (error 7).
    android::Paint GetPaint() const;
    // False, and the earlier paint kept, when memory runs out (error 7).
    bool SetPaint(android::Paint& paint);

    // Whether lines show all of their ink. A line's mask is as wide as its ink then and lies where
    // layout puts it: the first letter keeps its bearing, the last one's overhang and marks are not
    // cut, and padding does not cut either. FitBitmapToView makes the image larger by what reaches
    // beyond the view. Off by default: ink begins at the line's x and ends at its advance.
    void setKeepsWholeInk(bool keeps);
    bool getKeepsWholeInk() const;
    // How far the ink reached beyond the view, in pixels on each side, at the last FitBitmapToView:
    // drawing moves the text by the left and top ones as it does by the effects' margins. All 0
    // without whole ink.
    GxRect GetInkMargins() const;

    // Whether the text fill is as opaque as the effect stack's text opacity says: at 0 outlines,
    // shadows and glows are left alone, around letters that show what lies beneath the image. Off
    // by default: the opacity then chooses the composition only, and the fill is opaque.
    void setFadesFill(bool fades);
    bool getFadesFill() const;

    // Whether glyphs that have colours of their own, such as emoji, are painted in them: bitmaps
    // (CBDT, sbix) and layers or graphs of outlines (COLR 0 and 1) with the font's first palette.
    // They come over the effects, and the fill and the effects over the letters leave them out;
    // what lies beneath, shadows, glows and strokes, is made from their silhouettes. The text
    // colour's alpha and the fill's opacity fade them like letters. Glyphs that are SVG stay their
    // outlines. With the system's text stack it is its canvas that draws them: of COLR 1 what the
    // release knows. Off by default: they are letters in the shape of their silhouettes.
    void setKeepsColorGlyphs(bool keeps);
    bool getKeepsColorGlyphs() const;

    // 0xAARRGGBB boxes behind each line, drawn when enabled.
    void SetBackgroundColor(uint32_t color, bool enabled);
    // The shape of those boxes. The plain one is the default.
    void SetBackgroundShape(const GxBackgroundShape& shape);
    // 0xAARRGGBB beneath everything, all over the image; transparent unless set.
    void SetCanvasColor(uint32_t color);
    // 0xAARRGGBB; its alpha fades the whole image, effects included. Opaque black before Construct.
    void SetTextColor(uint32_t color);
    uint32_t GetTextColor() const;

private:
    friend class GxFontDrawing;

    const android::Paint& paint() const;
    template <typename Draw>
    bool renderGuarded(int width, int height, Draw drawPicture);
    GxRect draw(GxBitmap& picture);
    template <typename Text, typename... Length>
    bool storeText(const Text* text, Length... length);
    bool useFont(const char* path, char* data, unsigned size);
    GxFontDrawing& fontDrawing();
    bool requireConstructed(int site) const;

    std::unique_ptr<GxTextObjectImpl> impl;
};

}  // namespace GxFontEffect
