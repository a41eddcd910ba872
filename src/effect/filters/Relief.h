// What bevel and emboss share: lit and shaded slopes along the text's edges.
#pragma once

#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/ReliefShape.h"

namespace GxFontEffect {

// Pixels that the relief needs beyond the text on every side; 0 without a record.
int reliefMargin(const GxBevelProperty* record, ReliefPlace place);

// The whole of a relief's doPostProcessing.
void renderRelief(GxECore::ParamPostProcessing* param, const GxBevelProperty* record,
                  ReliefPlace place);

}  // namespace GxFontEffect
