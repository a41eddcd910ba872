#include "hwui/MinikinSkia.h"

#include <SkFont.h>
#include <SkFontArguments.h>
#include <SkFontMetrics.h>
#include <SkTypeface.h>

#include <utility>

#include "minikin/Font.h"
#include "minikin/MinikinPaint.h"

namespace android {
namespace {

enum FontFlag : uint32_t {
    kEmbolden = 1u << 0,
    kLinearMetrics = 1u << 1,
    kSubpixel = 1u << 2,
    kEmbeddedBitmaps = 1u << 3,
    kForceAutoHinting = 1u << 4,
    kColorGlyphs = 1u << 5,
};
constexpr unsigned kEdgingShift = 8;
constexpr unsigned kHintingShift = 16;
constexpr uint32_t kByte = 0xFF;

// Skew of a faked italic: a shear of 1/4 to the right.
constexpr float kFakeItalicSkew = -0.25f;

void applyFakery(SkFont* skFont, minikin::FontFakery fakery) {
    skFont->setEmbolden(skFont->isEmbolden() || fakery.isFakeBold());
    if (fakery.isFakeItalic()) skFont->setSkewX(skFont->getSkewX() + kFakeItalicSkew);
}

SkFont measuringFont(const sk_sp<SkTypeface>& typeface, const minikin::MinikinPaint& paint,
                     const minikin::FontFakery& fakery) {
    SkFont skFont(typeface, paint.size, paint.scaleX, paint.skewX);
    MinikinFontSkia::unpackFontFlags(&skFont, paint.fontFlags);
    applyFakery(&skFont, fakery);
    return skFont;
}

}  // namespace

MinikinFontSkia::MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize,
                                 std::string_view filePath, int ttcIndex,
                                 const std::vector<minikin::FontVariation>& axes)
    : minikin::MinikinFont(static_cast<int32_t>(typeface->uniqueID())),
      mTypeface(std::move(typeface)),
      mFontData(fontData),
      mFontSize(fontSize),
      mTtcIndex(ttcIndex),
      mAxes(axes),
      mFilePath(filePath) {}

MinikinFontSkia::~MinikinFontSkia() = default;

float MinikinFontSkia::GetHorizontalAdvance(uint32_t glyph_id, const minikin::MinikinPaint& paint,
                                            const minikin::FontFakery& fakery) const {
    auto glyph = static_cast<uint16_t>(glyph_id);
    float advance = 0.0f;
    GetHorizontalAdvances(&glyph, 1, paint, fakery, &advance);
    return advance;
}

void MinikinFontSkia::GetHorizontalAdvances(uint16_t* glyph_ids, uint32_t count,
                                            const minikin::MinikinPaint& paint,
                                            const minikin::FontFakery& fakery,
                                            float* outAdvances) const {
    const SkFont skFont = measuringFont(mTypeface, paint, fakery);
    skFont.getWidths(glyph_ids, static_cast<int>(count), outAdvances);
}

void MinikinFontSkia::GetBounds(minikin::MinikinRect* bounds, uint32_t glyph_id,
                                const minikin::MinikinPaint& paint,
                                const minikin::FontFakery& fakery) const {
    float advance = 0.0f;
    GetAdvanceAndBounds(glyph_id, paint, fakery, &advance, bounds);
}

void MinikinFontSkia::GetAdvanceAndBounds(uint32_t glyph_id, const minikin::MinikinPaint& paint,
                                          const minikin::FontFakery& fakery, float* advance,
                                          minikin::MinikinRect* bounds) const {
    const SkFont skFont = measuringFont(mTypeface, paint, fakery);
    const auto glyph = static_cast<SkGlyphID>(glyph_id);
    SkRect box = SkRect::MakeLTRB(0, 0, 0, 0);
    skFont.getWidthsBounds(&glyph, 1, advance, &box, nullptr);
    *bounds = minikin::MinikinRect(box.fLeft, box.fTop, box.fRight, box.fBottom);
}

void MinikinFontSkia::GetFontExtent(minikin::MinikinExtent* extent,
                                    const minikin::MinikinPaint& paint,
                                    const minikin::FontFakery& fakery) const {
    const SkFont skFont = measuringFont(mTypeface, paint, fakery);
    SkFontMetrics metrics;
    skFont.getMetrics(&metrics);
    *extent = minikin::MinikinExtent(metrics.fAscent, metrics.fDescent);
}

std::shared_ptr<minikin::MinikinFont> MinikinFontSkia::createFontWithVariation(
    const std::vector<minikin::FontVariation>& variations) const {
    std::vector<SkFontArguments::VariationPosition::Coordinate> coordinates;
    coordinates.reserve(variations.size());
    for (const minikin::FontVariation& axis : variations) {
        coordinates.push_back({axis.axisTag, axis.value});
    }
    SkFontArguments arguments;
    arguments.setVariationDesignPosition(
        {coordinates.data(), static_cast<int>(coordinates.size())});
    sk_sp<SkTypeface> varied = mTypeface->makeClone(arguments);
    if (!varied) return nullptr;
    return std::make_shared<MinikinFontSkia>(std::move(varied), mFontData, mFontSize, mFilePath,
                                             mTtcIndex, variations);
}

SkTypeface* MinikinFontSkia::GetSkTypeface() const {
    return mTypeface.get();
}

sk_sp<SkTypeface> MinikinFontSkia::RefSkTypeface() const {
    return mTypeface;
}

uint32_t MinikinFontSkia::packFontFlags(const SkFont& font) {
    uint32_t flags = static_cast<uint32_t>(font.getHinting()) << kHintingShift |
                     static_cast<uint32_t>(font.getEdging()) << kEdgingShift;
    if (font.isEmbolden()) flags |= kEmbolden;
    if (font.isLinearMetrics()) flags |= kLinearMetrics;
    if (font.isSubpixel()) flags |= kSubpixel;
    if (font.isEmbeddedBitmaps()) flags |= kEmbeddedBitmaps;
    if (font.isForceAutoHinting()) flags |= kForceAutoHinting;
    if (font.isColorGlyphs()) flags |= kColorGlyphs;
    return flags;
}

void MinikinFontSkia::unpackFontFlags(SkFont* font, uint32_t fontFlags) {
    font->setHinting(static_cast<SkFontHinting>((fontFlags >> kHintingShift) & kByte));
    font->setEdging(static_cast<SkFont::Edging>((fontFlags >> kEdgingShift) & kByte));
    font->setEmbolden(fontFlags & kEmbolden);
    font->setLinearMetrics(fontFlags & kLinearMetrics);
    font->setSubpixel(fontFlags & kSubpixel);
    font->setEmbeddedBitmaps(fontFlags & kEmbeddedBitmaps);
    font->setForceAutoHinting(fontFlags & kForceAutoHinting);
    font->setColorGlyphs(fontFlags & kColorGlyphs);
}

void MinikinFontSkia::populateSkFont(SkFont* skFont, const minikin::MinikinFont* font,
                                     minikin::FontFakery fakery) {
    const auto* skia = dynamic_cast<const MinikinFontSkia*>(font);
    skFont->setTypeface(skia ? skia->RefSkTypeface() : nullptr);
    applyFakery(skFont, fakery);
}

}  // namespace android
