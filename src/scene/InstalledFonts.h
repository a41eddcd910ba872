// The fonts that are installed, as fontconfig orders them.
#pragma once

#include <memory>

#include "scene/FontCatalog.h"

namespace gxtext {

// Null when the library was built without fontconfig.
std::shared_ptr<const FontCatalog> installedFonts();

}  // namespace gxtext
