// In place of InstalledFonts.cpp where fontconfig is not to be had.
#include "scene/InstalledFonts.h"

namespace gxtext {

std::shared_ptr<const FontCatalog> installedFonts() {
    return nullptr;
}

}  // namespace gxtext
