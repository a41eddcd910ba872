// How the time of whole texts grows.
#pragma once

#include <string>

namespace gxbench {

// Prints comma-separated lines "curve,series,x,milliseconds" as printScaling() does:
//   length   x: characters of a text of 24 px; laid out, and drawn with a stroke
//   picture  x: pixels of a title whose lengths all grow; drawn
//   threads  x: threads that share 1920 titles; all drawn
void printTextScaling(const std::string& filter);

}  // namespace gxbench
