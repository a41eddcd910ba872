// The bytes of a font, mapped from a file or handed over by a caller. Internal to the library.
#pragma once

#include <cstdint>
#include <memory>

namespace GxFontEffect {

// Shared by the font manager and the fonts made from it, so the bytes live as long as any of them.
// Immutable.
class FontBuffer {
public:
    // Maps the file at `path`. The answer has no data when that is not a regular file with content
    // that can be read.
    static std::shared_ptr<const FontBuffer> MapFile(const char* path);

    // Takes over an array.
    FontBuffer(std::unique_ptr<char[]> data, uint32_t length);
    ~FontBuffer();
    FontBuffer(const FontBuffer&) = delete;
    FontBuffer& operator=(const FontBuffer&) = delete;

    const char* data() const { return mapped_ ? static_cast<const char*>(mapped_) : owned_.get(); }
    // Bytes; 0 without data.
    uint32_t length() const { return length_; }

private:
    std::unique_ptr<char[]> owned_;
    void* mapped_ = nullptr;
    uint32_t length_ = 0;
};

}  // namespace GxFontEffect
