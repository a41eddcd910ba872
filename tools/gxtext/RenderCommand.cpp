#include "Commands.h"
#include "PngIo.h"
#include "Streams.h"

namespace gxtool {

namespace {

std::vector<std::string> filesOf(const Style& style, const Scene& scene) {
    std::vector<std::string> files;
    for (const gxtext::Effect& effect : style.effects) {
        if (!effect.pattern.empty()) files.push_back((style.folder() / effect.pattern).string());
    }
    for (const FontFace& face : scene.fonts().faces) files.push_back(face.file);
    return files;
}

}  // namespace

void renderCommand(const Style& style, const RenderOptions& options) {
    refuseTerminal(options.output);
    refuseInputs(options.output, options.inputs);
    Scene scene(style);
    refuseInputs(options.output, filesOf(style, scene));
    reportMissing(scene, options.strict);
    const uint32_t* pixels = scene.render();
    writeOutput(options.output, encodePng(pixels, static_cast<uint32_t>(scene.imageWidth()),
                                          static_cast<uint32_t>(scene.imageHeight())));
}

}  // namespace gxtool
