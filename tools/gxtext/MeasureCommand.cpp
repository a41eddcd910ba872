#include <cstdio>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Streams.h"

namespace gxtool {

namespace {

using nlohmann::ordered_json;

ordered_json boxJson(const Box& box) {
    return {{"left", box.left}, {"top", box.top}, {"right", box.right}, {"bottom", box.bottom}};
}

ordered_json sceneJson(const Scene& scene) {
    ordered_json lines = ordered_json::array();
    for (const SceneLine& line : scene.lines()) {
        lines.push_back({{"text", line.text},
                         {"start", line.range.start},
                         {"end", line.range.end},
                         {"direction", line.range.rightToLeft ? "rtl" : "ltr"},
                         {"x", line.x},
                         {"baseline", line.baseline},
                         {"advance", line.advance},
                         {"box", boxJson(line.box)},
                         {"ink", boxJson(line.ink)}});
    }
    return {{"image", {{"width", scene.imageWidth()}, {"height", scene.imageHeight()}}},
            {"margins", boxJson(scene.margins())},
            {"lines", lines}};
}

std::string boxText(const char* name, const Box& box) {
    char text[96];
    snprintf(text, sizeof(text), " %s %d,%d %dx%d", name, box.left, box.top, box.right - box.left,
             box.bottom - box.top);
    return text;
}

std::string sceneText(const Scene& scene) {
    char line[160];
    const Box& margins = scene.margins();
    snprintf(line, sizeof(line), "image %dx%d\nmargins left %d top %d right %d bottom %d\n",
             scene.imageWidth(), scene.imageHeight(), margins.left, margins.top, margins.right,
             margins.bottom);
    std::string text = line;
    for (size_t i = 0; i < scene.lines().size(); i++) {
        const SceneLine& item = scene.lines()[i];
        snprintf(line, sizeof(line), "line %zu %s x %d baseline %d advance %g", i + 1,
                 item.range.rightToLeft ? "rtl" : "ltr", item.x, item.baseline,
                 static_cast<double>(item.advance));
        text += line + boxText("box", item.box) + boxText("ink", item.ink) + " " + item.text + "\n";
    }
    return text;
}

}  // namespace

void measureCommand(const Style& style, bool asJson) {
    const Scene scene(style);
    reportMissing(scene, false);
    writeOutput("-", asJson ? printedJson(sceneJson(scene)) : sceneText(scene));
}

}  // namespace gxtool
