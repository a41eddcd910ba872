#include "scene/PictureFile.h"

#include <webp/decode.h>
#include <webp/encode.h>

#include <algorithm>
#include <bit>

#include "scene/SceneError.h"

namespace gxtext {

namespace {

struct WebpPicture {
    WebPPicture record;
    WebPMemoryWriter writer;

    WebpPicture() {
        WebPPictureInit(&record);
        WebPMemoryWriterInit(&writer);
        record.writer = WebPMemoryWrite;
        record.custom_ptr = &writer;
    }
    WebpPicture(const WebpPicture&) = delete;
    WebpPicture& operator=(const WebpPicture&) = delete;
    ~WebpPicture() {
        WebPPictureFree(&record);
        WebPMemoryWriterClear(&writer);
    }
};

// The encoder's own measure of effort, 0-9: the knees of docs/gxtext.md's curve.
int webpEffort(PngCompression compression) {
    if (compression == PngCompression::kFast) return 0;
    return compression == PngCompression::kDefault ? 1 : 6;
}

}  // namespace

std::optional<PictureFormat> pictureFormatOf(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    if (extension == ".png") return PictureFormat::kPng;
    if (extension == ".webp") return PictureFormat::kWebp;
    return std::nullopt;
}

std::string encode(const Picture& picture, PictureFormat format, PngCompression compression) {
    if (format == PictureFormat::kPng) return picture.toPng(compression);
    return encodeWebp(picture.pixels().data(), static_cast<uint32_t>(picture.width()),
                      static_cast<uint32_t>(picture.height()), compression);
}

std::string encodeWebp(const uint32_t* pixels, uint32_t width, uint32_t height,
                       PngCompression compression) {
    if (!pixels || width == 0 || height == 0) throw PictureError("the picture", "no pixels");
    if (width > WEBP_MAX_DIMENSION || height > WEBP_MAX_DIMENSION) {
        throw PictureError("the picture",
                           std::to_string(width) + " x " + std::to_string(height) + " pixels",
                           "up to " + std::to_string(WEBP_MAX_DIMENSION) + " a side in WebP");
    }
    WebPConfig config;
    WebpPicture picture;
    if (!WebPConfigInit(&config) || !WebPConfigLosslessPreset(&config, webpEffort(compression))) {
        throw PictureError("the picture", "the installed libwebp is another one");
    }
    config.exact = 1;
    picture.record.use_argb = 1;
    picture.record.width = static_cast<int>(width);
    picture.record.height = static_cast<int>(height);
    // Its words are those of a Picture; it reads them in place.
    picture.record.argb = const_cast<uint32_t*>(pixels);
    picture.record.argb_stride = static_cast<int>(width);
    if (!WebPEncode(&config, &picture.record)) throw PictureError("the picture", "out of memory");
    return {reinterpret_cast<const char*>(picture.writer.mem), picture.writer.size};
}

Image decodePicture(std::string_view bytes, const std::string& name) {
    if (!bytes.starts_with("RIFF") || bytes.substr(0, 12).substr(8) != "WEBP") {
        return decodePng(bytes, name);
    }
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    int width = 0, height = 0;
    if (!WebPGetInfo(data, bytes.size(), &width, &height)) {
        throw PictureError(name, "a damaged WebP picture");
    }
    Image image{static_cast<uint32_t>(width), static_cast<uint32_t>(height), {}};
    const uint64_t count = uint64_t{image.width} * image.height;
    if (count > kMaxReadPixels) {
        throw PictureError(name, std::to_string(width) + " x " + std::to_string(height) + " pixels",
                           "up to " + std::to_string(kMaxReadPixels) + " in all");
    }
    image.pixels.resize(count);
    // Words 0xAARRGGBB as they lie in memory.
    const auto decode =
        std::endian::native == std::endian::little ? WebPDecodeBGRAInto : WebPDecodeARGBInto;
    if (!decode(data, bytes.size(), reinterpret_cast<uint8_t*>(image.pixels.data()), count * 4,
                width * 4)) {
        throw PictureError(name, "a damaged WebP picture");
    }
    return image;
}

}  // namespace gxtext
