// How a rectangle changes the clip.
#pragma once

enum class SkClipOp {
    kDifference,  // not offered by this canvas: the clip stays as it is
    kIntersect,
};
