#include "Commands.h"
#include "FileIo.h"
#include "PngIo.h"

namespace gxtool {

void renderCommand(const Style& style, const RenderOptions& options) {
    refuseTerminal(options.output);
    Scene scene(style);
    reportMissing(scene, options.strict);
    const uint32_t* pixels = scene.render();
    writeOutput(options.output, encodePng(pixels, static_cast<uint32_t>(scene.imageWidth()),
                                          static_cast<uint32_t>(scene.imageHeight())));
}

}  // namespace gxtool
