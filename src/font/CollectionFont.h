// Another font of a collection whose bytes are there.
#pragma once

#include <SkStream.h>
#include <SkTypeface.h>
#include <hwui/MinikinSkia.h>
#include <minikin/FontVariation.h>
#include <minikin/MinikinFont.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace GxFontEffect {

// Font number `index` of the collection that `font` is of, under the name `path`; it keeps `font`,
// whose bytes it borrows. Null when there is none.
inline std::shared_ptr<minikin::MinikinFont> CollectionFont(
    const std::shared_ptr<minikin::MinikinFont>& font, const std::string& path, int index) {
    sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(
        std::make_unique<SkMemoryStream>(font->GetFontData(), font->GetFontSize()), index);
    if (!typeface) return nullptr;
    const auto other = std::make_shared<android::MinikinFontSkia>(
        std::move(typeface), font->GetFontData(), font->GetFontSize(), path, index,
        std::vector<minikin::FontVariation>());
    using FontPointer = std::shared_ptr<minikin::MinikinFont>;
    const auto both = std::make_shared<std::pair<FontPointer, FontPointer>>(font, other);
    return {both, both->second.get()};
}

}  // namespace GxFontEffect
