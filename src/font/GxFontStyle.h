// The style that the name of a font file tells. Internal to the library.
#pragma once

namespace GxFontEffect {

class GxString;

struct GxFontStyle {
    int weight = 400;
    bool italic = false;
};

// Looks for style markers ("-Italic", "-Thin", "-Light", "-Medium", "-Black", "-Bold") anywhere in
// the path but at its start and its very end; the first of them in this order decides alone:
// "-Italic" keeps `weight`, the others stand for a weight and upright. "-Medium" is 700 instead of
// 500 for the family "qrn-roboto-light", whose medium cut serves as its bold. A path without a
// marker keeps `weight`, upright. `familyName` may be null.
GxFontStyle DeriveFontStyle(const GxString& path, const GxString* familyName, int weight);

}  // namespace GxFontEffect
