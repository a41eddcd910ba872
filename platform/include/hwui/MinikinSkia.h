// A Skia typeface as a font of the layout engine.
#pragma once

#include <cutils/compiler.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "SkRefCnt.h"
#include "minikin/MinikinFont.h"

class SkFont;
class SkTypeface;

namespace minikin {
class FontFakery;
}

namespace android {

class ANDROID_API MinikinFontSkia : public minikin::MinikinFont {
public:
    // `typeface` must not be null; it gives the unique id. `fontData` is the whole font file,
    // borrowed: it must outlive the object. The path is copied and only kept for callers.
    explicit MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize,
                             std::string_view filePath, int ttcIndex,
                             const std::vector<minikin::FontVariation>& axes);
    ~MinikinFontSkia() override;

    float GetHorizontalAdvance(uint32_t glyph_id, const minikin::MinikinPaint& paint,
                               const minikin::FontFakery& fakery) const override;
    void GetHorizontalAdvances(uint16_t* glyph_ids, uint32_t count,
                               const minikin::MinikinPaint& paint,
                               const minikin::FontFakery& fakery,
                               float* outAdvances) const override;
    void GetBounds(minikin::MinikinRect* bounds, uint32_t glyph_id,
                   const minikin::MinikinPaint& paint,
                   const minikin::FontFakery& fakery) const override;
    void GetAdvanceAndBounds(uint32_t glyph_id, const minikin::MinikinPaint& paint,
                             const minikin::FontFakery& fakery, float* advance,
                             minikin::MinikinRect* bounds) const override;
    void GetFontExtent(minikin::MinikinExtent* extent, const minikin::MinikinPaint& paint,
                       const minikin::FontFakery& fakery) const override;

    const void* GetFontData() const override { return mFontData; }
    size_t GetFontSize() const override { return mFontSize; }
    int GetFontIndex() const override { return mTtcIndex; }
    const std::vector<minikin::FontVariation>& GetAxes() const override { return mAxes; }
    std::shared_ptr<minikin::MinikinFont> createFontWithVariation(
        const std::vector<minikin::FontVariation>& variations) const override;

    SkTypeface* GetSkTypeface() const;
    sk_sp<SkTypeface> RefSkTypeface() const;
    const std::string& getFilePath() const { return mFilePath; }

    // hinting << 16 | edging << 8 | embolden 1 | linear metrics 2 | subpixel 4 | embedded bitmaps 8
    // | force auto-hinting 16 | colour glyphs 32
    static uint32_t packFontFlags(const SkFont& font);
    static void unpackFontFlags(SkFont* font, uint32_t fontFlags);

    // Readies `font` to draw glyphs of `font` with this fakery: sets the typeface, adds embolden
    // for a fake bold and -0.25 to the skew for a fake italic. Everything else stays.
    static void populateSkFont(SkFont* skFont, const minikin::MinikinFont* font,
                               minikin::FontFakery fakery);

private:
    const sk_sp<SkTypeface> mTypeface;
    const void* const mFontData;
    const size_t mFontSize;
    const int mTtcIndex;
    const std::vector<minikin::FontVariation> mAxes;
    const std::string mFilePath;
};

}  // namespace android
