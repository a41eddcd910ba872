// A rendered text.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "GxExport.h"
#include "scene/Arrangement.h"

namespace gxtext {

// How long a PNG is made smaller. What each costs and gains is a table in docs/gxtext.md.
enum class PngCompression { kFast = 0, kDefault = 1, kSmall = 2 };

// A value. Pixels are 0xAARRGGBB words, straight alpha, rows packed: width() x height() of them.
class GXTEXT_API Picture {
public:
    Picture() = default;
    // `pixels` holds arrangement.width x arrangement.height words.
    Picture(Arrangement arrangement, std::vector<uint32_t> pixels);

    int width() const { return arrangement_.width; }
    int height() const { return arrangement_.height; }
    const std::vector<uint32_t>& pixels() const { return pixels_; }
    // Hands them over; the picture has none any more.
    std::vector<uint32_t> takePixels() && { return std::move(pixels_); }

    // How far the effects reach beyond the text's own box, per side.
    const Box& margins() const { return arrangement_.margins; }
    const std::vector<Line>& lines() const { return arrangement_.lines; }
    // Characters that no font has; empty boxes stand for them.
    const std::vector<char32_t>& missing() const { return arrangement_.missing; }
    const Arrangement& arrangement() const { return arrangement_; }

    // A PNG file's bytes: RGBA, 8 bits each, the same for the same pixels; kSmall's as long as
    // libdeflate is of the same release. Throws PictureError for a picture without pixels.
    std::string toPng(PngCompression compression = PngCompression::kDefault) const;
    // Writes them to a file, which is the old or the new one whole whatever happens in between.
    // Throws FileError when it cannot be written, PictureError without pixels.
    void writePng(const std::filesystem::path& file,
                  PngCompression compression = PngCompression::kDefault) const;

private:
    Arrangement arrangement_;
    std::vector<uint32_t> pixels_;
};

}  // namespace gxtext
