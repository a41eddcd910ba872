// What the settings of a bevel or an emboss mean in pixels.
#pragma once

#include <cstdint>

#include "effect/GxProperty.h"
#include "raster/kernels/ReliefHeight.h"

namespace GxFontEffect {

// Techniques of a relief; any other value is smooth.
enum ReliefTechnique : int {
    GXE_RELIEF_CHISEL_HARD = 1,  // flat facets that meet in crisp ridges
    GXE_RELIEF_CHISEL_SOFT = 2,  // the ridges rounded
};

// Directions; any other value is up.
enum ReliefDirection : int { GXE_RELIEF_DOWN = 1 };

// Where a relief lies about the text's contour.
enum class ReliefPlace {
    kInside,        // a slope that rises inwards from the contour
    kOutside,       // one that rises up to the contour
    kAcross,        // half of it on either side
    kGrooveAcross,  // both sides rise from the contour
};

// Extents in pixels.
struct ReliefShape {
    ReliefShape(const GxBevelProperty& record, ReliefPlace reliefPlace);

    // A relief without size or depth draws nothing.
    bool isVisible() const { return size > 0 && depth > 0; }
    bool isAcross() const {
        return place == ReliefPlace::kAcross || place == ReliefPlace::kGrooveAcross;
    }

    ReliefPlace place;
    int64_t size;     // width of the whole slope, at most 250
    int32_t depth;    // percent, at most 1000
    int64_t soften;   // reach of the light's blur, at most 16
    int64_t outside;  // reach of the slope outside the contour
    int64_t inside;
    int64_t blur;    // reach of the heights' blur
    int64_t margin;  // of what is painted around the text
    kernels::ReliefSlope slope;
};

// Whether the record rounds its ridges whole.
bool isSmooth(const GxBevelProperty& record);

}  // namespace GxFontEffect
