#include "scene/Picture.h"

#include <utility>

#include "scene/FileIo.h"
#include "scene/Png.h"

namespace gxtext {

Picture::Picture(Arrangement arrangement, std::vector<uint32_t> pixels)
    : arrangement_(std::move(arrangement)), pixels_(std::move(pixels)) {}

std::string Picture::toPng() const {
    return encodePng(pixels_.data(), static_cast<uint32_t>(width()),
                     static_cast<uint32_t>(height()));
}

void Picture::writePng(const std::filesystem::path& file) const {
    writeFile(file.string(), toPng());
}

}  // namespace gxtext
