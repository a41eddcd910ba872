// A variable font at other places of its axes.
#pragma once

#include <minikin/FontVariation.h>
#include <minikin/MinikinFont.h>

#include <memory>
#include <utility>
#include <vector>

namespace GxFontEffect {

// The font at these places; it keeps `font`, whose bytes it borrows. Null for a font that cannot be
// set.
inline std::shared_ptr<minikin::MinikinFont> VariedFont(
    const std::shared_ptr<minikin::MinikinFont>& font,
    const std::vector<minikin::FontVariation>& axes) {
    using FontPointer = std::shared_ptr<minikin::MinikinFont>;
    const FontPointer instance = font->createFontWithVariation(axes);
    if (!instance) return nullptr;
    const auto both = std::make_shared<std::pair<FontPointer, FontPointer>>(font, instance);
    return {both, both->second.get()};
}

}  // namespace GxFontEffect
