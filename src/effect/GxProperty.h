// Property records: the settings of one effect, and the key text they write.
#pragma once

#include <cstdint>

#include "GxExport.h"

namespace GxFontEffect {

class GxBitmap;

// One colour stop.
struct GxGradient {
    uint32_t color = 0;     // 0xAARRGGBB
    float opacity = 0.0f;   // 0-1
    float position = 0.0f;  // 0-1 along the ramp
};

// Base of every record. Records are plain values; constructors store what they are given but for
// the conversions said at each.
//
// The key text describes a configuration in few bytes. Every record writes a letter, then its
// fields in one of three forms (values are truncated toward zero first):
//   hex    one byte per hexadecimal digit, most significant first, each 0x80 | digit
//   short  one byte, 0x80 | (value & 0x7F)
//   angle  degrees made 0-359, two bytes: 0x80 | (a >> 7), 0x80 | (a & 0x7F)
// Letters in use: B D E F G I K L N P S T, and C and R for what the stack adds to a record.
class GXTEXT_API GxProperty {
public:
    GxProperty(uint32_t color, float opacity) : color(color), opacity(opacity) {}
    virtual ~GxProperty() = default;

    // Bytes that the key needs at most, without the final zero.
    virtual int getSequentialCharLength() const = 0;

    // Writes the key bytes and a zero after them at *cursor and advances it past the bytes, not the
    // zero: the buffer must hold getSequentialCharLength() + 1 bytes. False, and nothing written,
    // for a null cursor.
    virtual bool toSequentialChar(char** cursor) const = 0;

    uint32_t color;  // 0xAARRGGBB
    float opacity;   // 0-1

protected:
    GxProperty(const GxProperty&) = default;
    GxProperty& operator=(const GxProperty&) = default;
};

// Text fill: "T", colour hex.
class GXTEXT_API GxTextProperty : public GxProperty {
public:
    GxTextProperty(uint32_t color, float opacity) : GxProperty(color, opacity) {}
    int getSequentialCharLength() const override { return 9; }
    bool toSequentialChar(char** cursor) const override;
};

// Outer shadow: "S", angle, distance short, size short, colour hex.
class GXTEXT_API GxOuterShadowProperty : public GxProperty {
public:
    GxOuterShadowProperty(float angle, float distance, float size, uint32_t color, float opacity)
        : GxProperty(color, opacity), angle(angle), distance(distance), size(size) {}
    int getSequentialCharLength() const override { return 13; }
    bool toSequentialChar(char** cursor) const override;

    float angle;     // degrees, direction of the light
    float distance;  // pixels
    float size;      // blur, pixels
};

// Inner shadow: "I", then as the outer shadow. The angle is truncated and reduced modulo 360,
// keeping its sign.
class GXTEXT_API GxInnerShadowProperty : public GxProperty {
public:
    GxInnerShadowProperty(float angle, float distance, float size, uint32_t color, float opacity);
    int getSequentialCharLength() const override { return 13; }
    bool toSequentialChar(char** cursor) const override;

    float angle;     // degrees, whole, -359 to 359
    float distance;  // pixels
    float size;      // blur, pixels
};

// Stroke: "K", size short, colour hex, cap short, position short; with a fill "F" and the fill's
// key.
class GXTEXT_API GxStrokeProperty : public GxProperty {
public:
    enum Position : int32_t { kCenter = 0, kOutside = 1, kInside = 2 };

    GxStrokeProperty(float size, uint32_t color, float opacity, int cap, int position)
        : GxProperty(color, opacity), size(size), cap(cap), position(position) {}
    int getSequentialCharLength() const override;
    bool toSequentialChar(char** cursor) const override;

    float size;        // width, pixels
    int32_t cap;       // carried and written, read by no filter
    int32_t position;  // Position; any other value lies inside
    // A linear or radial gradient's record or a pattern's, which paints the stroke in place of
    // `color`; borrowed. Null, and records of other effects, leave the colour.
    const GxProperty* fill = nullptr;
};

// What the glows share: the stops are borrowed, `stopCount` of them.
class GXTEXT_API GxOuterGlowProperty : public GxProperty {
public:
    GxOuterGlowProperty(float size, uint32_t color, float opacity, int stopCount,
                        const GxGradient* stops)
        : GxProperty(color, opacity), size(size), stopCount(stopCount), stops(stops) {}

    // Ten bytes are reserved per stop and nine written.
    int getSequentialCharLength() const override;
    // "G", size short, colour hex, per stop: colour hex, position in percent short.
    bool toSequentialChar(char** cursor) const override;

    float size;  // pixels
    int32_t stopCount;
    const GxGradient* stops;

protected:
    bool writeKey(char letter, char** cursor) const;
};

// Inner glow: "N", then as the outer glow.
class GXTEXT_API GxInnerGlowProperty : public GxOuterGlowProperty {
public:
    using GxOuterGlowProperty::GxOuterGlowProperty;
    bool toSequentialChar(char** cursor) const override;
};

// Linear gradient. The colour is 0, the angle truncated and reduced modulo 360 keeping its sign,
// the scale clamped to 0-2. The stops are borrowed.
class GXTEXT_API GxLinearGradientProperty : public GxProperty {
public:
    GxLinearGradientProperty(float angle, float scale, float opacity, int stopCount,
                             const GxGradient* stops);

    // Ten bytes are reserved per stop and nine written.
    int getSequentialCharLength() const override;
    // "L", angle, scale in percent as two hex digits, then the stops as for the glows.
    bool toSequentialChar(char** cursor) const override;

    float angle;  // degrees, whole, -359 to 359
    float scale;  // 0-2
    int32_t stopCount;
    const GxGradient* stops;

protected:
    bool writeKey(char letter, char** cursor) const;
};

// Radial gradient: "D", then as the linear gradient.
class GXTEXT_API GxRadialGradientProperty : public GxLinearGradientProperty {
public:
    using GxLinearGradientProperty::GxLinearGradientProperty;
    bool toSequentialChar(char** cursor) const override;
};

// Bevel. The colour is 0, the depth clamped to 0-10, soften to 0-16; angle and altitude are
// truncated and reduced modulo 360 and 90, keeping their signs.
class GXTEXT_API GxBevelProperty : public GxProperty {
public:
    GxBevelProperty(int kind, float size, float depth, int technique, int direction, int soften,
                    float opacity, float angle, float altitude, uint32_t highlightColor,
                    float highlightOpacity, uint32_t shadowColor, float shadowOpacity);

    int getSequentialCharLength() const override { return 30; }
    // "B", kind short, size as two hex digits, depth in percent as four, technique, direction and
    // soften short, angle, altitude short, highlight and shadow colours hex.
    bool toSequentialChar(char** cursor) const override;

    int32_t kind;  // 1 lies inside the glyphs, any other value beneath them
    float size;    // pixels
    float depth;   // 0-10
    int32_t technique;
    int32_t direction;
    int32_t soften;  // 0-16
    float angle;     // degrees, whole
    float altitude;  // degrees, whole
    uint32_t highlightColor;
    float highlightOpacity;
    uint32_t shadowColor;
    float shadowOpacity;

protected:
    bool writeKey(char letter, char** cursor) const;
};

// Emboss: "E", then as the bevel.
class GXTEXT_API GxEmbossProperty : public GxBevelProperty {
public:
    using GxBevelProperty::GxBevelProperty;
    bool toSequentialChar(char** cursor) const override;
};

// Pattern. The colour is 0, the scale clamped to 0-10. The bitmap is borrowed.
class GXTEXT_API GxPatternProperty : public GxProperty {
public:
    GxPatternProperty(GxBitmap* pattern, float scale, float opacity);

    int getSequentialCharLength() const override { return 17; }
    // "P", the low 32 bits of the bitmap's address hex, scale in percent as four hex digits,
    // opacity in percent likewise: equal patterns in different bitmaps have different keys.
    bool toSequentialChar(char** cursor) const override;

    GxBitmap* pattern;  // 32-bit
    float scale;        // 0-10
};

}  // namespace GxFontEffect
