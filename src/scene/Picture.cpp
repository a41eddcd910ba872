#include "scene/Picture.h"

#include <utility>

#include "scene/FileIo.h"
#include "scene/Png.h"

namespace gxtext {

Picture::Picture(Arrangement arrangement, std::vector<uint32_t> pixels)
    : arrangement_(std::move(arrangement)), pixels_(std::move(pixels)) {}

std::string Picture::toPng(PngCompression compression) const {
    return encodePng(pixels_.data(), static_cast<uint32_t>(width()),
                     static_cast<uint32_t>(height()), compression);
}

void Picture::writePng(const std::filesystem::path& file, PngCompression compression) const {
    writeFile(file.string(), toPng(compression));
}

}  // namespace gxtext
