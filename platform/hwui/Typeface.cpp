#include "hwui/Typeface.h"

#include <SkFontStyle.h>
#include <SkTypeface.h>
#include <android/log.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>

#include "hwui/MinikinSkia.h"

namespace android {
namespace {

constexpr int kBoldFrom = 600;
constexpr int kMaxWeight = 1000;

std::atomic<const Typeface*> gDefaultTypeface{nullptr};

// What the first family's regular font says of itself; regular upright without one.
SkFontStyle styleOfFirstFamily(const std::vector<std::shared_ptr<minikin::FontFamily>>& families) {
    if (families.empty() || !families.front()) return SkFontStyle();
    const minikin::Font* font = families.front()->getClosestMatch(minikin::FontStyle()).font;
    const auto* skia =
        font ? dynamic_cast<const MinikinFontSkia*>(font->typeface().get()) : nullptr;
    return skia ? skia->GetSkTypeface()->fontStyle() : SkFontStyle();
}

Typeface::Style apiStyle(int weight, bool italic) {
    const int bold = weight >= kBoldFrom ? Typeface::kBold : Typeface::kNormal;
    return static_cast<Typeface::Style>(bold | (italic ? Typeface::kItalic : Typeface::kNormal));
}

}  // namespace

Typeface* Typeface::createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                       int weight, int italic) {
    if (weight == RESOLVE_BY_FONT_TABLE || italic == RESOLVE_BY_FONT_TABLE) {
        const SkFontStyle declared = styleOfFirstFamily(families);
        if (weight == RESOLVE_BY_FONT_TABLE) weight = declared.weight();
        if (italic == RESOLVE_BY_FONT_TABLE)
            italic = declared.slant() != SkFontStyle::kUpright_Slant;
    }
    if (weight < 0) weight = SkFontStyle::kNormal_Weight;

    auto result = std::make_unique<Typeface>();
    result->fFontCollection = std::make_shared<minikin::FontCollection>(families);
    result->fAPIStyle = apiStyle(weight, italic != 0);
    result->fStyle = minikin::FontStyle(static_cast<uint16_t>(std::clamp(weight, 1, kMaxWeight)),
                                        static_cast<minikin::FontStyle::Slant>(italic != 0));
    return result.release();
}

const Typeface* Typeface::resolveDefault(const Typeface* src) {
    if (src) return src;
    const Typeface* face = gDefaultTypeface.load(std::memory_order_acquire);
    if (!face) {
        __android_log_print(ANDROID_LOG_FATAL, "Typeface", "no default typeface was set");
        std::abort();
    }
    return face;
}

void Typeface::setDefault(const Typeface* face) {
    gDefaultTypeface.store(face, std::memory_order_release);
}

}  // namespace android
