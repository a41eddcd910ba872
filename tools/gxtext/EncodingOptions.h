// Options of a picture's file: --format and --compression.
#pragma once

#include <optional>
#include <string>

#include "scene/PictureFile.h"

namespace CLI {
class App;
}

namespace gxtool {

struct EncodingOptions {
    std::optional<gxtext::PictureFormat> format;  // else by the output's name
    gxtext::PngCompression compression = gxtext::PngCompression::kDefault;

    std::string bytesOf(const gxtext::Picture& picture, const std::string& output) const;
};

// `options` lives as long as the parser.
void addEncoding(CLI::App& app, EncodingOptions& options);

}  // namespace gxtool
