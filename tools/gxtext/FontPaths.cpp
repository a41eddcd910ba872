#include "FontPaths.h"

#include <filesystem>

namespace gxtool {

using gxtext::FontSource;

FontSource fontsAt(const std::vector<std::string>& paths) {
    if (paths.empty()) return FontSource::installed();
    const bool isFile = std::filesystem::is_regular_file(paths.front());
    if (paths.size() == 1 && !isFile) return FontSource::folder(paths.front());
    return FontSource::files({paths.begin(), paths.end()});
}

}  // namespace gxtool
