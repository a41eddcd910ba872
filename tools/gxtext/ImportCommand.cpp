#include <cstdio>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Streams.h"
#include "ToolError.h"
#include "style/LayerStyle.h"

namespace gxtool {

namespace {

using gxtext::ImportedStyle;
using gxtext::ImportLoss;
using nlohmann::ordered_json;

ordered_json lossesJson(const ImportedStyle& imported) {
    ordered_json losses = ordered_json::array();
    for (const ImportLoss& loss : imported.losses) {
        losses.push_back(
            {{"path", loss.path}, {"kind", lossName(loss.kind)}, {"reason", loss.reason}});
    }
    return losses;
}

void printLosses(const ImportedStyle& imported, const std::string& source) {
    for (const ImportLoss& loss : imported.losses) {
        fprintf(stderr, "gxtext: %s: %s: %s: %s\n", source.c_str(), loss.path.c_str(),
                std::string(lossName(loss.kind)).c_str(), loss.reason.c_str());
    }
}

}  // namespace

// Standard output has the style, or data that holds it unless it goes to a file of its own.
void importCommand(const ImportOptions& options) {
    refuseInputs(options.output, {options.input});
    const std::string source = options.input == "-" ? "standard input" : options.input;
    const ImportedStyle imported =
        gxtext::importLayerStyle(readInput(options.input, Style::kMaxBytes), source);
    const std::string style = imported.style.toJson();
    const bool fails = options.strict && !imported.losses.empty();
    const bool toFile = options.output != "-";
    if (!fails && (toFile || !options.json)) writeOutput(options.output, style);
    if (options.json) {
        ordered_json report = ordered_json::object();
        if (!fails && !toFile) report["style"] = ordered_json::parse(style);
        report["losses"] = lossesJson(imported);
        writeOutput("-", printedJson(report));
    } else {
        printLosses(imported, source);
    }
    if (fails) {
        const size_t count = imported.losses.size();
        throw ToolError(source + ": " + std::to_string(count) +
                        (count == 1 ? " field is" : " fields are") + " dropped or approximated");
    }
}

}  // namespace gxtool
