// Colours, blend modes and gradients of a layer-effect file.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "style/LayerRecord.h"
#include "style/Style.h"

namespace gxtext {

// A field that holds a colour, in any of the colour models; black where there is none.
Color readColor(LayerRecord& record, std::string_view name);

// Reads a blend mode and reports the one that does not come to plain painting with these colours.
void readBlendMode(LayerRecord& record, std::string_view name, const std::vector<Color>& colors);

// The colours and opacities of a gradient, in order of position; nothing where it has none.
std::vector<Stop> readRamp(LayerRecord& gradient);

// A linear or radial gradient. `place` says how it lies, its form in the field `form`; `gradient`
// what colours it has. They may be one record. Nothing for a gradient without colours.
std::optional<Effect> readGradient(LayerRecord& place, std::string_view form,
                                   LayerRecord& gradient);

}  // namespace gxtext
