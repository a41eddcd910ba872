#include "Commands.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "ToolError.h"

namespace gxtool {

std::string formatCodePoints(const std::vector<char32_t>& codePoints) {
    std::string list;
    for (const char32_t c : codePoints) {
        char text[16];
        snprintf(text, sizeof(text), "U+%04X", static_cast<unsigned>(c));
        list.append(list.empty() ? "" : ", ").append(text);
    }
    return list;
}

std::string printedJson(const nlohmann::ordered_json& value) {
    return value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

void reportMissing(const Scene& scene, bool strict) {
    if (scene.missing().empty()) return;
    constexpr size_t kMostListed = 20;
    const std::vector<char32_t>& all = scene.missing();
    const size_t listed = std::min(all.size(), kMostListed);
    std::string message = "no font has ";
    message += formatCodePoints({all.begin(), all.begin() + static_cast<ptrdiff_t>(listed)});
    if (listed < all.size()) message += " and " + std::to_string(all.size() - listed) + " others";
    if (strict) throw ToolError(message);
    fprintf(stderr, "gxtext: warning: %s\n", message.c_str());
}

}  // namespace gxtool
