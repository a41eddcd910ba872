#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Streams.h"

namespace gxtool {

namespace {

using nlohmann::ordered_json;

std::string fontsText(const Scene& scene) {
    const auto coverage = scene.coverage();
    std::string text;
    for (size_t i = 0; i < coverage.size(); i++) {
        const FontFace& face = scene.fonts().faces[i];
        text += face.family + "\t" + face.file + "#" + std::to_string(face.index) + "\t" +
                formatCodePoints(coverage[i]) + "\n";
    }
    return text;
}

ordered_json fontsJson(const Scene& scene) {
    const auto coverage = scene.coverage();
    ordered_json fonts = ordered_json::array();
    for (size_t i = 0; i < coverage.size(); i++) {
        const FontFace& face = scene.fonts().faces[i];
        ordered_json codePoints = ordered_json::array();
        for (const char32_t c : coverage[i]) codePoints.push_back(formatCodePoints({c}));
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

void fontsCommand(const Style& style, bool asJson) {
    const Scene scene(style);
    reportMissing(scene, false);
    writeOutput("-", asJson ? printedJson(fontsJson(scene)) : fontsText(scene));
}

}  // namespace gxtool
