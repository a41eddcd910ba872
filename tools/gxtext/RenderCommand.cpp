#include "Commands.h"
#include "Streams.h"
#include "batch/TitleWork.h"
#include "scene/Renderer.h"

namespace gxtool {

void renderCommand(const Request& request, const RenderOptions& options) {
    refuseTerminal(options.output);
    refuseInputs(options.output, options.inputs);
    requireText(request.style);
    gxtext::Renderer renderer(request.fonts);
    const gxtext::Picture picture = renderer.render(request.style);
    reportMissing(picture.arrangement(), options.strict);
    refuseInputs(options.output, gxtext::filesOf(request.style, picture.arrangement()));
    writeOutput(options.output, options.encoding.bytesOf(picture, options.output));
}

}  // namespace gxtool
