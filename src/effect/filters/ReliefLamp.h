// The lamp that lights a relief.
#pragma once

#include "effect/GxProperty.h"
#include "effect/filters/ReliefShape.h"
#include "raster/kernels/ReliefLight.h"

namespace GxFontEffect {

// The light of the record's angle, altitude, direction and depth.
kernels::ReliefLighting reliefLighting(const GxBevelProperty& record, const ReliefShape& shape);

}  // namespace GxFontEffect
