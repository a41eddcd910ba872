// How a source pixel is put onto the destination. s and d are premultiplied.
#pragma once

enum class SkBlendMode {
    kClear,    // 0
    kSrc,      // s
    kDst,      // d
    kSrcOver,  // s + (1 - sa) * d
    kDstOver,  // d + (1 - da) * s
};
