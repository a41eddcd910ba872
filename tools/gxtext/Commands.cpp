#include "Commands.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "ToolError.h"
#include "scene/Renderer.h"

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

void requireText(const Style& style) {
    if (!style.text)
        throw ToolError("there is no text; give --text or a style with a text", kUsage);
}

gxtext::Arrangement arrange(const Request& request) {
    requireText(request.style);
    return gxtext::Renderer(request.fonts).arrange(request.style);
}

void reportMissing(const gxtext::Arrangement& arrangement, bool strict) {
    const std::vector<char32_t>& all = arrangement.missing;
    if (all.empty()) return;
    constexpr size_t kMostListed = 20;
    const size_t listed = std::min(all.size(), kMostListed);
    std::string message = "no font has ";
    message += formatCodePoints({all.begin(), all.begin() + static_cast<ptrdiff_t>(listed)});
    if (listed < all.size()) message += " and " + std::to_string(all.size() - listed) + " others";
    if (strict) throw ToolError(message);
    fprintf(stderr, "gxtext: warning: %s\n", message.c_str());
}

}  // namespace gxtool
