#include "scene/Pattern.h"

#include <new>

#include "scene/FileIo.h"
#include "scene/Png.h"

namespace gxtext {

GxFontEffect::GxBitmap loadPattern(const std::filesystem::path& file) {
    const Image image = decodePng(readFile(file.string(), kMaxImageBytes), file.string());
    GxFontEffect::GxBitmap bitmap(image.width, image.height, 4);
    if (!bitmap.data) throw std::bad_alloc();
    uint8_t* byte = bitmap.data;
    for (const uint32_t pixel : image.pixels) {
        for (const int shift : {24, 16, 8, 0}) *byte++ = static_cast<uint8_t>(pixel >> shift);
    }
    return bitmap;
}

}  // namespace gxtext
