#include "Style.h"

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
    GxFontEffect::GxBitmap bitmap(image.width, image.height, 4);
    if (!bitmap.data) throw ToolError(file.string() + ": out of memory");
    uint8_t* byte = bitmap.data;
    for (const uint32_t pixel : image.pixels) {
        for (const int shift : {24, 16, 8, 0}) *byte++ = static_cast<uint8_t>(pixel >> shift);
    }
    return bitmap;
}

}  // namespace gxtool
