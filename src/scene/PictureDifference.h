// How two pictures differ, pixel by pixel.
#pragma once

#include <cstdint>

#include "scene/Png.h"

namespace gxtext {

struct PictureDifference {
    bool sameSize = true;
    uint64_t pixels = 0;  // that differ by more than the tolerance; those of one picture alone too
    int largest = 0;      // difference of a channel, 0-255; 255 where one picture has no pixel
};

// Channels are compared as they are stored, alpha and the colours of clear pixels included.
// `tolerance`: how far a channel may be off, 0-255.
PictureDifference comparePictures(const Image& before, const Image& after, int tolerance);

// Three panes side by side, opaque: `before` and `after` on a checkerboard, and where they differ,
// brighter where they do more. Throws PictureError where that is larger than pictures may be.
Image drawDifference(const Image& before, const Image& after, int tolerance);

}  // namespace gxtext
