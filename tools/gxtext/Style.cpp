#include "Style.h"

#include <vector>

#include "FileIo.h"
#include "PngIo.h"
#include "Streams.h"
#include "ToolError.h"

namespace gxtool {

Style loadStyle(const std::string& file) {
    const std::string json = readInput(file, Style::kMaxBytes);
    return Style::fromJson(json, file == "-" ? "standard input" : file);
}

GxFontEffect::GxBitmap loadPattern(const std::filesystem::path& file) {
    const Image image = decodePng(readFile(file.string(), kMaxImageBytes), file.string());
    std::vector<uint8_t> bytes;
    bytes.reserve(image.pixels.size() * 4);
    for (const uint32_t pixel : image.pixels) {
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    }
    GxFontEffect::GxBitmap bitmap(image.width, image.height, bytes.data(), 4);
    if (!bitmap.data) throw ToolError(file.string() + ": out of memory");
    return bitmap;
}

}  // namespace gxtool
