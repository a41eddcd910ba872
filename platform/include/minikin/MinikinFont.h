// One face of a font file, as layout sees it: its bytes and its glyph metrics.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "minikin/FontVariation.h"
#include "minikin/MinikinRect.h"

namespace minikin {

class FontFakery;
class FontFile;
struct MinikinPaint;

// Vertical extent in pixels, y growing downwards: ascent is negative.
struct MinikinExtent {
    MinikinExtent() = default;
    MinikinExtent(float ascentY, float descentY) : ascent(ascentY), descent(descentY) {}

    float ascent = 0.0f;
    float descent = 0.0f;
};

// Implementations must answer from several threads at once.
class MinikinFont {
public:
    explicit MinikinFont(int32_t uniqueId);
    virtual ~MinikinFont();
    MinikinFont(const MinikinFont&) = delete;
    MinikinFont& operator=(const MinikinFont&) = delete;

    // Pixels.
    virtual float GetHorizontalAdvance(uint32_t glyph_id, const MinikinPaint& paint,
                                       const FontFakery& fakery) const = 0;
    // Fills outAdvances[0, count). Asks glyph by glyph unless overridden.
    virtual void GetHorizontalAdvances(uint16_t* glyph_ids, uint32_t count,
                                       const MinikinPaint& paint, const FontFakery& fakery,
                                       float* outAdvances) const;
    // Box around the ink relative to the glyph's origin; all 0 for a blank.
    virtual void GetBounds(MinikinRect* bounds, uint32_t glyph_id, const MinikinPaint& paint,
                           const FontFakery& fakery) const = 0;
    // The two above in one.
    virtual void GetAdvanceAndBounds(uint32_t glyph_id, const MinikinPaint& paint,
                                     const FontFakery& fakery, float* advance,
                                     MinikinRect* bounds) const;
    virtual void GetFontExtent(MinikinExtent* extent, const MinikinPaint& paint,
                               const FontFakery& fakery) const = 0;

    // The whole font file, borrowed; must stay the same for the life of the object.
    virtual const void* GetFontData() const = 0;
    virtual size_t GetFontSize() const = 0;
    // Face inside a font collection file.
    virtual int GetFontIndex() const = 0;
    virtual const std::vector<FontVariation>& GetAxes() const = 0;

    // The same font with these axis settings in place of its own, over the same borrowed bytes;
    // null when the kind of font has none.
    virtual std::shared_ptr<MinikinFont> createFontWithVariation(
        const std::vector<FontVariation>& /*variations*/) const {
        return nullptr;
    }

    int32_t GetUniqueId() const { return mUniqueId; }

private:
    friend class Font;
    // Parsed on first use and shared by every Font built from this object.
    const FontFile& file() const;

    const int32_t mUniqueId;
    struct LazyFile;
    const std::unique_ptr<LazyFile> mLazyFile;
};

}  // namespace minikin
