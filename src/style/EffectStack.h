// From a style to an effect stack.
#pragma once

#include <filesystem>
#include <functional>

#include "GxExport.h"
#include "raster/GxBitmap.h"
#include "style/Style.h"

namespace GxFontEffect {
class GxEffect;
}

namespace gxtext {

// Gives the picture of a pattern: four bytes per pixel in the order alpha, red, green, blue,
// straight, rows packed. The path is the style's, joined to its folder. Throws Error when there is
// none; the place in the style is put before its message.
using PatternLoader = std::function<GxFontEffect::GxBitmap(const std::filesystem::path& file)>;

// Adds the style's effects to `stack`, through its typed add operations; those of a type that the
// stack has already get new settings. A colour's alpha, which the stack ignores, multiplies the
// opacity. Text colour and opacity are not touched.
//
// An effect that this build has no filter for adds nothing. Throws StyleError for a pattern that
// cannot be loaded, std::bad_alloc when memory runs out; the effects before it are in the stack
// then.
GXTEXT_API void dress(GxFontEffect::GxEffect& stack, const Style& style,
                      const PatternLoader& loadPattern);

}  // namespace gxtext
