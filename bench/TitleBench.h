// Whole pictures of texts.
#pragma once

#include <string>

#include "Bench.h"
#include "TitlePicture.h"

namespace gxbench {

// As ours draws it, into a new picture in each run. Empty, with a word on the error stream, where
// nothing shows.
Run ownTitleRun(const TitlePicture& picture);

// Writes the pictures of all contenders whose row's name holds `filter` into the folder
// out/bench-pictures, so that they can be compared by eye.
void savePictures(const std::string& filter);

}  // namespace gxbench
