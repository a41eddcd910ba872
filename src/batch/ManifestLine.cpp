#include "batch/ManifestLine.h"

#include <cstdio>

namespace gxtext {

using nlohmann::ordered_json;

ordered_json boxJson(const Box& box) {
    return {{"left", box.left}, {"top", box.top}, {"right", box.right}, {"bottom", box.bottom}};
}

ordered_json lineJson(const Line& line) {
    return {{"text", line.text},
            {"start", line.start},
            {"end", line.end},
            {"direction", line.rightToLeft ? "rtl" : "ltr"},
            {"x", line.x},
            {"baseline", line.baseline},
            {"advance", line.advance},
            {"box", boxJson(line.box)},
            {"ink", boxJson(line.ink)}};
}

ordered_json codePointsJson(const std::vector<char32_t>& characters) {
    ordered_json list = ordered_json::array();
    for (const char32_t c : characters) {
        char text[16];
        snprintf(text, sizeof(text), "U+%04X", static_cast<unsigned>(c));
        list.push_back(text);
    }
    return list;
}

std::string manifestLine(uint64_t row, const std::string& id, const std::string& output,
                         const ordered_json& fields) {
    ordered_json line{{"row", row}, {"id", id}};
    if (!output.empty()) line["output"] = output;
    line.update(fields);
    return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string errorLine(uint64_t row, const std::string& id, const std::string& output,
                      const RowError& error) {
    return manifestLine(row, id, output,
                        {{"error", {{"place", error.place}, {"reason", error.reason}}}});
}

}  // namespace gxtext
