// How the time of a render grows.
#pragma once

#include <string>

namespace gxbench {

// Prints comma-separated lines "curve,series,x,milliseconds" of the curves whose name holds
// `filter`, after a heading line:
//   radius   x: size of the effect in pixels; the effect alone on the text mask, and the libraries
//            that do its work
//   area     x: side of a square layer in pixels; the effect alone
//   effects  x: number of effects in the stack; the whole render of the text mask
void printScaling(const std::string& filter);

}  // namespace gxbench
