// Geometry of the view that a text is drawn for.
#pragma once

#include <cstdint>
#include <memory>

#include "GxExport.h"

namespace GxFontEffect {

// Plain record with checked setters, all in pixels. Sizes and padding start at 0. Not locked.
class GXTEXT_API GxView {
public:
    struct BitmapSize {
        int32_t bitmapWidth = 0;
        int32_t bitmapHeight = 0;
    };

    // Gravity bits that decide which side the padding does not clip (android.view.Gravity).
    static constexpr uint32_t kHorizontalGravityMask = 0x07;
    static constexpr uint32_t kVerticalGravityMask = 0x70;
    static constexpr uint32_t kGravityLeft = 0x03;
    static constexpr uint32_t kGravityRight = 0x05;
    static constexpr uint32_t kGravityTop = 0x30;
    static constexpr uint32_t kGravityBottom = 0x50;

    // False, and nothing stored, when either is negative.
    bool SetSize(int w, int h);
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }

    // The bitmap to render into: view size plus effect margins. False, and nothing stored, when
    // negative.
    bool SetBitmapWidth(int value);
    bool SetBitmapHeight(int value);
    int GetBitmapWidth() const { return bitmapSize->bitmapWidth; }
    int GetBitmapHeight() const { return bitmapSize->bitmapHeight; }
    // Owned by the view.
    const BitmapSize* GetDrawingBitmapSize() const { return bitmapSize.get(); }

    // Always true; any value is stored.
    bool SetPadding(int left, int top, int right, int bottom);

    int32_t width = 0;
    int32_t height = 0;
    std::unique_ptr<BitmapSize> bitmapSize = std::make_unique<BitmapSize>();
    int32_t paddingLeft = 0;
    int32_t paddingTop = 0;
    int32_t paddingRight = 0;
    int32_t paddingBottom = 0;
    uint32_t gravity = 0xFFFFFFFFu;  // none of the values above
    int32_t maxLines = 0;            // stored for the bridge, not used in rendering
    int32_t lineLimit = 0;           // likewise
};

}  // namespace GxFontEffect
