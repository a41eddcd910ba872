#include "effect/GxProperty.h"

#include <algorithm>
#include <limits>

#include "effect/KeyWriter.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

bool isWritable(char** cursor) {
    return cursor && *cursor;
}

uint32_t percent(float value) {
    return static_cast<uint32_t>(toInt(value * 100.0f));
}

float wholeDegrees(float degrees, int32_t period) {
    return static_cast<float>(toInt(degrees) % period);
}

// Length of a key with stops; 0 for a count that no buffer holds.
int lengthWithStops(int fixed, int32_t stopCount) {
    const int64_t length = fixed + int64_t{10} * std::max(stopCount, 0);
    return length <= std::numeric_limits<int>::max() ? static_cast<int>(length) : 0;
}

}  // namespace

bool GxTextProperty::toSequentialChar(char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor).letter('T').hex(color);
    return true;
}

bool GxOuterShadowProperty::toSequentialChar(char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor).letter('S').angle(angle).shortForm(distance).shortForm(size).hex(color);
    return true;
}

GxInnerShadowProperty::GxInnerShadowProperty(float angle, float distance, float size,
                                             uint32_t color, float opacity)
    : GxProperty(color, opacity), angle(wholeDegrees(angle, 360)), distance(distance), size(size) {}

bool GxInnerShadowProperty::toSequentialChar(char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor).letter('I').angle(angle).shortForm(distance).shortForm(size).hex(color);
    return true;
}

bool GxStrokeProperty::toSequentialChar(char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor).letter('K').shortForm(size).hex(color).shortForm(cap).shortForm(position);
    if (!fill) return true;
    KeyWriter(cursor).letter('F');
    return fill->toSequentialChar(cursor);
}

int GxStrokeProperty::getSequentialCharLength() const {
    const int64_t length = 12 + (fill ? 1 + int64_t{fill->getSequentialCharLength()} : 0);
    return saturateInt(length);
}

int GxOuterGlowProperty::getSequentialCharLength() const {
    return lengthWithStops(10, stopCount);
}

bool GxOuterGlowProperty::writeKey(char letter, char** cursor) const {
    if (!isWritable(cursor) || getSequentialCharLength() == 0) return false;
    KeyWriter(cursor).letter(letter).shortForm(size).hex(color).stops(stopCount, stops);
    return true;
}

bool GxOuterGlowProperty::toSequentialChar(char** cursor) const {
    return writeKey('G', cursor);
}

bool GxInnerGlowProperty::toSequentialChar(char** cursor) const {
    return writeKey('N', cursor);
}

GxLinearGradientProperty::GxLinearGradientProperty(float angle, float scale, float opacity,
                                                   int stopCount, const GxGradient* stops)
    : GxProperty(0, opacity),
      angle(wholeDegrees(angle, 360)),
      scale(clampFloat(scale, 0.0f, 2.0f)),
      stopCount(stopCount),
      stops(stops) {}

int GxLinearGradientProperty::getSequentialCharLength() const {
    return lengthWithStops(5, stopCount);
}

bool GxLinearGradientProperty::writeKey(char letter, char** cursor) const {
    if (!isWritable(cursor) || getSequentialCharLength() == 0) return false;
    KeyWriter(cursor).letter(letter).angle(angle).digits(percent(scale), 2).stops(stopCount, stops);
    return true;
}

bool GxLinearGradientProperty::toSequentialChar(char** cursor) const {
    return writeKey('L', cursor);
}

bool GxRadialGradientProperty::toSequentialChar(char** cursor) const {
    return writeKey('D', cursor);
}

GxBevelProperty::GxBevelProperty(int kind, float size, float depth, int technique, int direction,
                                 int soften, float opacity, float angle, float altitude,
                                 uint32_t highlightColor, float highlightOpacity,
                                 uint32_t shadowColor, float shadowOpacity)
    : GxProperty(0, opacity),
      kind(kind),
      size(size),
      depth(clampFloat(depth, 0.0f, 10.0f)),
      technique(technique),
      direction(direction),
      soften(std::clamp(soften, 0, 16)),
      angle(wholeDegrees(angle, 360)),
      altitude(wholeDegrees(altitude, 90)),
      highlightColor(highlightColor),
      highlightOpacity(highlightOpacity),
      shadowColor(shadowColor),
      shadowOpacity(shadowOpacity) {}

bool GxBevelProperty::writeKey(char letter, char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor)
        .letter(letter)
        .shortForm(kind)
        .digits(static_cast<uint32_t>(toInt(size)), 2)
        .digits(percent(depth), 4)
        .shortForm(technique)
        .shortForm(direction)
        .shortForm(soften)
        .angle(angle)
        .shortForm(altitude)
        .hex(highlightColor)
        .hex(shadowColor);
    return true;
}

bool GxBevelProperty::toSequentialChar(char** cursor) const {
    return writeKey('B', cursor);
}

bool GxEmbossProperty::toSequentialChar(char** cursor) const {
    return writeKey('E', cursor);
}

GxPatternProperty::GxPatternProperty(GxBitmap* pattern, float scale, float opacity)
    : GxProperty(0, opacity), pattern(pattern), scale(clampFloat(scale, 0.0f, 10.0f)) {}

bool GxPatternProperty::toSequentialChar(char** cursor) const {
    if (!isWritable(cursor)) return false;
    KeyWriter(cursor)
        .letter('P')
        .hex(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pattern)))
        .digits(percent(scale), 4)
        .digits(percent(opacity), 4);
    return true;
}

}  // namespace GxFontEffect
