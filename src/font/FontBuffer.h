// The bytes of a font, loaded from a file or handed over by a caller. Internal to the library.
#pragma once

#include <cstdint>
#include <memory>

namespace GxFontEffect {

// Shared by the font manager and the fonts made from it, so the bytes live as long as any of them.
// Immutable.
class FontBuffer {
public:
    // Files up to this size are read into memory: a mapped file that is cut short while in use
    // kills the process, and one that is written to changes under parsers that have checked it.
    // Reading costs 0.5 ms per MB, once per process, and as much memory as the file has; a mapping
    // costs the few pages that a text touches. This is beyond all installed fonts of a desktop but
    // colour emoji (11 MB) and CJK collections (20 to 27 MB: 10 to 13 ms, as long as everything
    // else that a picture takes).
    static constexpr uint32_t kMaxReadBytes = uint32_t{8} << 20;

    // The bytes of the file at `path`. The answer has no data when that is not a regular file with
    // content that can be read. Throws bad_alloc, also when the system is short of memory or of
    // descriptors: that says nothing about the file.
    //
    // Files above kMaxReadBytes are mapped, and all files on a read-only file system, where a
    // device keeps its own fonts: see FontManager::AddMinikinFont for what that asks of them.
    static std::shared_ptr<const FontBuffer> LoadFile(const char* path);

    // Takes over an array.
    FontBuffer(std::unique_ptr<char[]> data, uint32_t length);
    ~FontBuffer();
    FontBuffer(const FontBuffer&) = delete;
    FontBuffer& operator=(const FontBuffer&) = delete;

    const char* data() const { return mapped_ ? static_cast<const char*>(mapped_) : owned_.get(); }
    // Bytes; 0 without data.
    uint32_t length() const { return length_; }

private:
    void Read(int file, uint32_t length);
    void Map(int file, uint32_t length);

    std::unique_ptr<char[]> owned_;
    void* mapped_ = nullptr;
    uint32_t length_ = 0;
};

}  // namespace GxFontEffect
