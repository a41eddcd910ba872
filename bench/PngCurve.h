// What packing a picture as a PNG costs and gains.
#pragma once

#include <string>

namespace gxbench {

// Prints comma-separated lines "packer,level,milliseconds,percent" after a heading line: packing
// all pictures of examples/styles/gallery, in all, and their size over that which libpng comes to
// by itself, the geometric mean. Packers are libdeflate on rows without a filter ("none"), on
// differences from the row above ("up"), and what pictures are written with ("PNG").
void printPngCurve(const std::string& filter);

}  // namespace gxbench
