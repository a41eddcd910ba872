// What a worker of the studio does: a request in, an answer out.
#pragma once

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "scene/FontSource.h"
#include "scene/Renderer.h"

namespace gxstudio {

// Requests are JSON objects with "op":
//
//   "render"    {style, source, files, scale, fit}     the picture, RGBA, and what is known of it
//   "file"      {style, source, files, scale, format}  a file, "png" or "webp"
//   "check"     {style, source}                        {"text"}: the style file's canonical text
//   "import"    {text}                                 {"layers"}: of the JSON of layer effects
//   "layers"    {file}                                 {"layers"}: of a PSD or PSB file
//   "font"      {file}                                 {"family", "faces"} of a font file
//   "families"                                         {"families"}
//
// `source` is the style's own file. `files` has the name of each file that the style may use, and
// the place of it. `fit` [width, height] draws it as much smaller as it must be. Layers, topmost
// first, are {"name", "style", "losses": [{"path", "kind", "reason"}]}.
//
// Keeps fonts and caches. For one thread.
class Work {
public:
    // `fontPaths` is what the fonts were found at (gxtool::fontsAt()).
    Work(gxtext::FontSource fonts, std::vector<std::string> fontPaths);

    // Whatever goes wrong is the answer (Answer.h).
    std::string answer(const std::string& request);

private:
    using Json = nlohmann::ordered_json;

    std::string answerTo(const Json& request);
    std::string draw(const Json& request, bool asFile);
    gxtext::Style fitted(const gxtext::Style& style, const Json& request);
    Json words(const gxtext::Arrangement& arrangement);
    const Json& axesOf(const gxtext::FontFace& face);

    const gxtext::FontSource fonts_;
    const std::vector<std::string> fontPaths_;
    gxtext::Renderer renderer_;
    std::map<std::pair<std::string, int>, Json> axes_;
};

}  // namespace gxstudio
