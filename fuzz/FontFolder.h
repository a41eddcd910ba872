// The made-up fonts as files, for what takes paths.
#pragma once

#include <filesystem>

#include "FuzzFonts.h"

namespace gxfuzz {

// A folder of this process alone, removed when it ends, however it ends. Holds the fonts, and
// pattern.png.
const std::filesystem::path& fontFolder();

// "latin.ttf": below fontFolder().
const char* fontFileName(FontKind kind);

}  // namespace gxfuzz
