#include "EncodingOptions.h"

#include <CLI/CLI.hpp>
#include <map>

namespace gxtool {

using gxtext::PictureFormat;
using gxtext::PngCompression;

std::string EncodingOptions::bytesOf(const gxtext::Picture& picture,
                                     const std::string& output) const {
    const PictureFormat byName = gxtext::pictureFormatOf(output).value_or(PictureFormat::kPng);
    return encode(picture, format.value_or(byName), compression);
}

void addEncoding(CLI::App& app, EncodingOptions& options) {
    static const std::map<std::string, PictureFormat> kFormats = {{"png", PictureFormat::kPng},
                                                                  {"webp", PictureFormat::kWebp}};
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options.format = kFormats.at(name); },
           "png or webp, lossless (default: by the output's name, else png)")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"png", "webp"}).description(""))
        ->group("Output");
    static const std::map<std::string, PngCompression> kCompressions = {
        {"fast", PngCompression::kFast},
        {"default", PngCompression::kDefault},
        {"small", PngCompression::kSmall}};
    app.add_option_function<std::string>(
           "--compression",
           [&options](const std::string& name) { options.compression = kCompressions.at(name); },
           "fast, default or small: how long the file is made smaller")
        ->type_name("HOW")
        ->check(CLI::IsMember({"fast", "default", "small"}).description(""))
        ->group("Output");
}

}  // namespace gxtool
