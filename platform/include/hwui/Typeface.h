// A font collection with the style that is asked of it.
#pragma once

#include <cutils/compiler.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "minikin/FontCollection.h"
#include "minikin/FontFamily.h"
#include "minikin/FontStyle.h"

namespace android {

// Weight or slant argument that stands for "as the font file says".
constexpr int RESOLVE_BY_FONT_TABLE = -1;

struct ANDROID_API Typeface {
    enum Style : uint8_t {
        kNormal = 0,
        kBold = 0x01,
        kItalic = 0x02,
        kBoldItalic = 0x03,
    };

    std::shared_ptr<minikin::FontCollection> fFontCollection;
    minikin::FontStyle fStyle;
    Style fAPIStyle;

    // A typeface over the families, to be released with delete; never null. The pointers are
    // copied, the caller's vector keeps its elements. `weight` is 100 to 900 (clamped to 1..1000,
    // 400 for a negative one), `italic` 0 or 1; RESOLVE_BY_FONT_TABLE takes either from the first
    // family's font closest to regular upright. Without families every layout is empty.
    static Typeface* createFromFamilies(
        std::vector<std::shared_ptr<minikin::FontFamily>>&& families, int weight, int italic);

    // `src`, or the default typeface for null. Aborts when that was never set.
    static const Typeface* resolveDefault(const Typeface* src);
    // Borrowed; must stay alive while it is the default.
    static void setDefault(const Typeface* face);
};

}  // namespace android
