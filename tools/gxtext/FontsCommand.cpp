#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Streams.h"

namespace gxtool {

namespace {

using nlohmann::ordered_json;

std::string fontsText(const gxtext::Arrangement& arrangement) {
    std::string text;
    for (const auto& [face, characters] : arrangement.fonts) {
        text += face.family + "\t" + face.file + "#" + std::to_string(face.index) + "\t" +
                formatCodePoints(characters) + "\n";
    }
    return text;
}

ordered_json fontsJson(const gxtext::Arrangement& arrangement) {
    ordered_json fonts = ordered_json::array();
    for (const auto& [face, characters] : arrangement.fonts) {
        ordered_json codePoints = ordered_json::array();
        for (const char32_t c : characters) codePoints.push_back(formatCodePoints({c}));
        fonts.push_back({{"family", face.family},
                         {"file", face.file},
                         {"index", face.index},
                         {"weight", face.weight},
                         {"italic", face.italic},
                         {"locales", face.locales},
                         {"codePoints", codePoints}});
    }
    return fonts;
}

}  // namespace

void fontsCommand(const Request& request, bool asJson) {
    const gxtext::Arrangement arrangement = arrange(request);
    reportMissing(arrangement, false);
    writeOutput("-", asJson ? printedJson(fontsJson(arrangement)) : fontsText(arrangement));
}

}  // namespace gxtool
