#include "scene/FontCatalog.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <utility>

namespace gxtext {

bool equalNames(const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool isGenericFamily(const std::string& name) {
    constexpr std::array generic{"sans-serif", "serif", "monospace", "cursive",
                                 "fantasy",    "math",  "system-ui", "emoji"};
    return std::any_of(generic.begin(), generic.end(), [&](auto g) { return equalNames(name, g); });
}

bool FaceInfo::isOfFamily(const std::string& name) const {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& own) { return equalNames(own, name); });
}

bool FontCatalog::covers(char32_t c) const {
    std::call_once(collected_, [this] {
        auto all = std::make_unique<CodePointSet>();
        collect(*all);
        all_ = std::move(all);
    });
    return c < kCodePoints && all_->test(c);
}

}  // namespace gxtext
