// Sampling quality of bitmaps. Stored in SkPaint; this canvas always takes the nearest pixel.
#pragma once

enum SkFilterQuality {
    kNone_SkFilterQuality,
    kLow_SkFilterQuality,
    kMedium_SkFilterQuality,
    kHigh_SkFilterQuality,
};
