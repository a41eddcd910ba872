// Colour and style of what is drawn.
#pragma once

#include "SkBlendMode.h"
#include "SkColor.h"
#include "SkFilterQuality.h"
#include "SkScalar.h"
#include "SkTypes.h"

// A plain value. The canvas fills, source over, with the colour; stroke settings and the flags are
// kept for callers that read them back, they change nothing in the drawing.
class SkPaint {
public:
    enum Style {
        kFill_Style,
        kStroke_Style,
        kStrokeAndFill_Style,
    };
    enum Cap {
        kButt_Cap,
        kRound_Cap,
        kSquare_Cap,
        kDefault_Cap = kButt_Cap,
    };
    enum Join {
        kMiter_Join,
        kRound_Join,
        kBevel_Join,
        kDefault_Join = kMiter_Join,
    };

    // Opaque black, fill, stroke width 0, miter limit 4, no flags.
    SkPaint() = default;

    void reset() { *this = SkPaint(); }

    bool isAntiAlias() const { return fAntiAlias; }
    void setAntiAlias(bool aa) { fAntiAlias = aa; }
    bool isDither() const { return fDither; }
    void setDither(bool dither) { fDither = dither; }
    SkFilterQuality getFilterQuality() const { return fFilterQuality; }
    void setFilterQuality(SkFilterQuality quality) { fFilterQuality = quality; }

    Style getStyle() const { return fStyle; }
    void setStyle(Style style) { fStyle = style; }

    SkColor getColor() const { return fColor; }
    void setColor(SkColor color) { fColor = color; }
    uint8_t getAlpha() const { return static_cast<uint8_t>(SkColorGetA(fColor)); }
    void setAlpha(U8CPU a) { fColor = (fColor & 0x00FFFFFF) | (a << 24); }

    // Negative values and NaN are ignored by both setters.
    SkScalar getStrokeWidth() const { return fStrokeWidth; }
    void setStrokeWidth(SkScalar width) {
        if (width >= 0) fStrokeWidth = width;
    }
    SkScalar getStrokeMiter() const { return fStrokeMiter; }
    void setStrokeMiter(SkScalar miter) {
        if (miter >= 0) fStrokeMiter = miter;
    }
    Cap getStrokeCap() const { return fCap; }
    void setStrokeCap(Cap cap) { fCap = cap; }
    Join getStrokeJoin() const { return fJoin; }
    void setStrokeJoin(Join join) { fJoin = join; }

    friend bool operator==(const SkPaint& a, const SkPaint& b) = default;

private:
    SkColor fColor = SK_ColorBLACK;
    SkScalar fStrokeWidth = 0;
    SkScalar fStrokeMiter = 4;
    Style fStyle = kFill_Style;
    Cap fCap = kDefault_Cap;
    Join fJoin = kDefault_Join;
    SkFilterQuality fFilterQuality = kNone_SkFilterQuality;
    bool fAntiAlias = false;
    bool fDither = false;
};
