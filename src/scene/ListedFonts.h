// The fonts of a folder or of a list of files, and no others.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "scene/FontCatalog.h"

namespace gxtext {

// Every font file of the folder and the folders in it, in order of path. Throws FontError when it
// is no folder or holds no font.
std::shared_ptr<const FontCatalog> fontsOfFolder(const std::filesystem::path& folder);

// Every face of these files, in the order given. Throws FontError for a file that is no TrueType or
// OpenType font.
std::shared_ptr<const FontCatalog> fontsOfFiles(const std::vector<std::filesystem::path>& files);

}  // namespace gxtext
