#include "bridge/FontConfigRules.h"

#include <unistd.h>

#include "base/File.h"

namespace GxFontEffect {

bool FontConfigRules::Considers(bool named) {
    isDefault_ = named && !sawNamed_;
    sawNamed_ |= named;
    return isDefault_ || !named;
}

bool FontConfigRules::BuildsNow(const std::string& languages) const {
    return isDefault_ || languages.empty() || languages == "und-Zsym" || languages == "und-Zsye";
}

std::string FontConfigRules::CutPath(std::string path) {
    if (path.size() > kMaxPathBytes) path.resize(kMaxPathBytes);
    return path;
}

bool FontConfigRules::Keeps(const std::string& path, bool italic,
                            const std::optional<std::string>& fallbackFor) {
    if (italic || (fallbackFor && !fallbackFor->empty())) return false;
    return File::IsAccessible(path.c_str(), R_OK) == 0;
}

}  // namespace GxFontEffect
