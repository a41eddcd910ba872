// Layer effects of image editors into styles.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "GxExport.h"
#include "style/Style.h"

namespace gxtext {

enum class LossKind {
    kApproximated,  // something near it is drawn
    kDropped,       // it is not drawn, or not known
};
// "approximated", "dropped"
GXTEXT_API std::string_view lossName(LossKind kind);

// A field that a style does not say as the file did.
struct ImportLoss {
    std::string path;  // JSON path: "$.dropShadow[0].noise"
    LossKind kind;
    std::string reason;  // a sentence

    bool operator==(const ImportLoss&) const = default;
};

struct ImportedStyle {
    Style style;  // one that toJson() can write, "listed" from the lowest effect to the topmost
    std::vector<ImportLoss> losses;
};

// Reads the effects of a layer: JSON (UTF-8) in the shape of the type LayerEffectsInfo of ag-psd,
// with "globalAngle" and "globalAltitude" of a document beside the effects where they are known.
// Fields that are left out are what they are in a style that leaves them out; of several effects
// of a kind the first lies on top. What a field holds that it cannot hold is a loss too. Throws
// StyleError for what is no JSON object; `source` is what messages call the text.
GXTEXT_API ImportedStyle importLayerStyle(std::string_view json, const std::string& source = {});

}  // namespace gxtext
