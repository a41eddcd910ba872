// The subcommands. Each does its work and throws ToolError when it cannot.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "EncodingOptions.h"
#include "Style.h"
#include "scene/Arrangement.h"
#include "scene/FontSource.h"
#include "scene/Picture.h"

namespace gxtool {

// A style with its text, and the fonts for it.
struct Request {
    Style style;
    gxtext::FontSource fonts;
};

struct RenderOptions {
    std::string output = "-";
    bool strict = false;  // missing glyphs are a failure
    EncodingOptions encoding;
    // What the style and the text came from, as the command line names it.
    std::vector<std::string> inputs;
};

struct ImportOptions {
    std::string input;
    std::string output = "-";
    bool strict = false;  // a loss is a failure
    bool json = false;    // losses as data on standard output
};

struct StudioOptions {
    std::string file;
    std::vector<std::string> fonts;  // a folder, or files; empty for those installed
    int port = 0;                    // 0 for a free one
    int idleSeconds = 600;
    bool noBrowser = false;
};

void renderCommand(const Request& request, const RenderOptions& options);
void measureCommand(const Request& request, bool asJson);
void keyCommand(const Style& style);
void fontsCommand(const Request& request, bool asJson);
void importCommand(const ImportOptions& options);
// Goes on as the program gxtext-studio.
void studioCommand(const StudioOptions& options);

// "U+0041, U+1F600"
std::string formatCodePoints(const std::vector<char32_t>& codePoints);
// Indented, with a final line break; file names that are no UTF-8 come out with replacement
// characters.
std::string printedJson(const nlohmann::ordered_json& value);
// Throws a usage error for a style without a text.
void requireText(const Style& style);
// The text as it will lie in its picture, without drawing it. Throws a usage error for a
// style without a text.
gxtext::Arrangement arrange(const Request& request);
// Warns on standard error of code points that no font has; throws when `strict`.
void reportMissing(const gxtext::Arrangement& arrangement, bool strict);

}  // namespace gxtool
