#include "scene/FontSource.h"

#include <utility>

#include "scene/FontLibrary.h"
#include "scene/InstalledFonts.h"
#include "scene/ListedFonts.h"
#include "scene/SceneError.h"

namespace gxtext {

FontSource::FontSource(std::shared_ptr<FontLibrary> library) : library_(std::move(library)) {}

FontSource FontSource::installed() {
    auto catalog = installedFonts();
    if (!catalog) {
        throw FontError("installed fonts", "this build cannot look for them (no fontconfig)",
                        "a folder or a list of files");
    }
    return FontSource(std::make_shared<FontLibrary>(std::move(catalog)));
}

FontSource FontSource::folder(const std::filesystem::path& folder) {
    return FontSource(std::make_shared<FontLibrary>(fontsOfFolder(folder)));
}

FontSource FontSource::files(const std::vector<std::filesystem::path>& files) {
    return FontSource(std::make_shared<FontLibrary>(fontsOfFiles(files)));
}

std::vector<std::string> FontSource::families() const {
    return library_->catalog().families();
}

}  // namespace gxtext
