// What layout needs to know of a paint.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "minikin/FamilyVariant.h"
#include "minikin/FontStyle.h"

namespace minikin {

class FontCollection;

struct MinikinPaint {
    explicit MinikinPaint(std::shared_ptr<FontCollection> collection)
        : font(std::move(collection)) {}

    float size = 0.0f;           // pixels
    float scaleX = 0.0f;         // horizontal factor
    float skewX = 0.0f;          // -0.25 leans right
    float letterSpacing = 0.0f;  // em
    float wordSpacing = 0.0f;    // pixels
    uint32_t fontFlags = 0;      // as android::MinikinFontSkia::packFontFlags writes them
    uint32_t localeListId = 0;
    FontStyle fontStyle;
    FamilyVariant familyVariant = FamilyVariant::DEFAULT;
    std::string fontFeatureSettings;
    std::shared_ptr<FontCollection> font;
};

}  // namespace minikin
