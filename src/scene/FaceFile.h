// What a font file says of its faces, read without opening it for drawing.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

#include "scene/FontCatalog.h"

namespace gxtext {

// Number of faces in the file: 1 for a plain font, more for a collection, 0 for anything else.
size_t countFaces(const std::filesystem::path& file);

// What the face can be set to; nothing for one that is not variable.
std::vector<FontAxis> readAxes(const std::filesystem::path& file, size_t index);

// The face's name, style and coverage, from its tables; null when it is no TrueType or OpenType
// font. Only the tables that say so are read, once, so the file may change or go afterwards. The
// coverage is read when it is first asked for; a file that has gone by then covers nothing.
FaceInfoPtr readFace(const std::filesystem::path& file, size_t index);

}  // namespace gxtext
