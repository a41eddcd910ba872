#include "effect/filters/ReliefShape.h"

#include <algorithm>

#include "effect/filters/Shadow.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

// Limits of the settings, those that layer styles usually have.
constexpr int64_t kMaxSize = 250;
constexpr int32_t kMaxDepth = 1000;
constexpr int32_t kMaxSoften = 16;

// Heights span less than this many pixels: 1/256 of one is their unit, and they have 16 bits.
constexpr int64_t kHeightSpan = 255;

constexpr int32_t kDistanceUnits = 256;  // per pixel

int32_t distance(int64_t pixels) {
    return static_cast<int32_t>(pixels * kDistanceUnits);
}

// Of the heights, where the slope has `half` of its width on the narrower side.
int64_t blurReach(const GxBevelProperty& record, int64_t half) {
    if (isSmooth(record)) return (2 * half + 2) / 3;
    return record.technique == GXE_RELIEF_CHISEL_SOFT ? (half + 3) / 4 : 0;
}

}  // namespace

bool isSmooth(const GxBevelProperty& record) {
    return record.technique != GXE_RELIEF_CHISEL_HARD && record.technique != GXE_RELIEF_CHISEL_SOFT;
}

ReliefShape::ReliefShape(const GxBevelProperty& record, ReliefPlace reliefPlace)
    : place(reliefPlace),
      size(std::min(blurRadiusOf(record.size), kMaxSize)),
      depth(std::clamp(toInt(record.depth * 100.0f + 0.5f), 0, kMaxDepth)),
      soften(std::clamp(record.soften, 0, kMaxSoften)),
      outside(isAcross()                       ? (size + 1) / 2
              : place == ReliefPlace::kOutside ? size
                                               : 0),
      inside(isAcross()                      ? size / 2
             : place == ReliefPlace::kInside ? size
                                             : 0),
      blur(blurReach(record, isAcross() ? inside : size)),
      margin(!isVisible() || place == ReliefPlace::kInside ? 0 : outside + soften + 1) {
    // A side that is closed ends as much early as the blur widens it. A free side goes on past the
    // contour, so that the pixels there, and the blurs over them, see the slope and not a cliff.
    const int64_t beyond = std::min(soften + blur + 2, kHeightSpan - size);
    slope.low = -distance(place == ReliefPlace::kInside ? beyond : outside - blur);
    slope.high = distance(place == ReliefPlace::kOutside ? beyond : inside - blur);
}

}  // namespace GxFontEffect
