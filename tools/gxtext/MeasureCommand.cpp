#include <cstdio>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Streams.h"
#include "batch/ManifestLine.h"

namespace gxtool {

namespace {

using gxtext::Arrangement;
using gxtext::Box;
using gxtext::Line;
using nlohmann::ordered_json;

ordered_json arrangementJson(const Arrangement& arrangement) {
    ordered_json lines = ordered_json::array();
    for (const Line& line : arrangement.lines) lines.push_back(gxtext::lineJson(line));
    return {{"image", {{"width", arrangement.width}, {"height", arrangement.height}}},
            {"margins", gxtext::boxJson(arrangement.margins)},
            {"lines", lines}};
}

std::string boxText(const char* name, const Box& box) {
    char text[96];
    snprintf(text, sizeof(text), " %s %d,%d %dx%d", name, box.left, box.top, box.right - box.left,
             box.bottom - box.top);
    return text;
}

std::string arrangementText(const Arrangement& arrangement) {
    char line[160];
    const Box& margins = arrangement.margins;
    snprintf(line, sizeof(line), "image %dx%d\nmargins left %d top %d right %d bottom %d\n",
             arrangement.width, arrangement.height, margins.left, margins.top, margins.right,
             margins.bottom);
    std::string text = line;
    for (size_t i = 0; i < arrangement.lines.size(); i++) {
        const Line& item = arrangement.lines[i];
        snprintf(line, sizeof(line), "line %zu %s x %d baseline %d advance %g", i + 1,
                 item.rightToLeft ? "rtl" : "ltr", item.x, item.baseline,
                 static_cast<double>(item.advance));
        text += line + boxText("box", item.box) + boxText("ink", item.ink) + " " + item.text + "\n";
    }
    return text;
}

}  // namespace

void measureCommand(const Request& request, bool asJson) {
    const Arrangement arrangement = arrange(request);
    reportMissing(arrangement, false);
    writeOutput("-",
                asJson ? printedJson(arrangementJson(arrangement)) : arrangementText(arrangement));
}

}  // namespace gxtool
