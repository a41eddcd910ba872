// From a style to an effect stack.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

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

// Where the style's enabled effects go from the lowest to the topmost, as indices into its list.
//
// In natural order: outer shadow, outer glow, outside stroke, outside bevel, the text, gradients
// and pattern (among themselves as listed), inner glow, inner shadow, inside bevel or emboss,
// centred or inside stroke; those of one kind as listed. An outside bevel shades the outline and is
// not hidden by it. In listed order: as listed; the stack keeps those beneath the text beneath it
// all the same.
GXTEXT_API std::vector<size_t> stackingOrder(const Style& style);

// Adds the style's effects to `stack` in their stacking order, through its typed add operations: a
// stack draws what was added later over what was added earlier, in either of its modes. Turns on
// that effects repeat: what the stack holds already stays. Sizes, distances and angles are rounded
// to whole pixels and degrees; a colour's alpha, which the stack ignores, multiplies the opacity.
// Text colour and opacity are not touched.
//
// An effect that this build has no filter for adds nothing. Throws StyleError for a pattern that
// cannot be loaded, std::bad_alloc when memory runs out; the effects before it are in the stack
// then.
GXTEXT_API void dress(GxFontEffect::GxEffect& stack, const Style& style,
                      const PatternLoader& loadPattern);

}  // namespace gxtext
