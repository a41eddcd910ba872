#include "Commands.h"
#include "Streams.h"
#include "scene/Renderer.h"

namespace gxtool {

namespace {

std::vector<std::string> filesOf(const Style& style, const gxtext::Picture& picture) {
    std::vector<std::string> files;
    for (const gxtext::Effect& effect : style.effects) {
        if (!effect.pattern.empty()) files.push_back((style.folder() / effect.pattern).string());
        for (const gxtext::Effect& fill : effect.fill.effects) {
            if (!fill.pattern.empty()) files.push_back((style.folder() / fill.pattern).string());
        }
    }
    for (const gxtext::UsedFont& font : picture.arrangement().fonts)
        files.push_back(font.face.file);
    return files;
}

}  // namespace

void renderCommand(const Request& request, const RenderOptions& options) {
    refuseTerminal(options.output);
    refuseInputs(options.output, options.inputs);
    requireText(request.style);
    gxtext::Renderer renderer(request.fonts);
    const gxtext::Picture picture = renderer.render(request.style);
    reportMissing(picture.arrangement(), options.strict);
    refuseInputs(options.output, filesOf(request.style, picture));
    writeOutput(options.output, picture.toPng(options.compression));
}

}  // namespace gxtool
