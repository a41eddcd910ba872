#include "font/FontBuffer.h"

#include <android/log.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace GxFontEffect {

namespace {

constexpr const char* kTag = "GxFontManager";

// The line carries the tag alone.
void LogFileFailure() {
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s", kTag);
}

// Lengths are kept in 32 bits, as the font API has them.
bool IsFontFile(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_size > 0 && status.st_size <= UINT32_MAX;
}

}  // namespace

std::shared_ptr<const FontBuffer> FontBuffer::MapFile(const char* path) {
    const auto buffer = std::make_shared<FontBuffer>(nullptr, 0);
    // Not blocking: opening a pipe would wait for its writer.
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        LogFileFailure();
        return buffer;
    }
    struct stat status;
    if (fstat(file, &status) != 0) {
        LogFileFailure();
    } else if (IsFontFile(status)) {
        const size_t length = static_cast<size_t>(status.st_size);
        void* mapped = mmap(nullptr, length, PROT_READ, MAP_SHARED, file, 0);
        if (mapped != MAP_FAILED) {
            buffer->mapped_ = mapped;
            buffer->length_ = static_cast<uint32_t>(length);
        }
    }
    close(file);
    return buffer;
}

FontBuffer::FontBuffer(std::unique_ptr<char[]> data, uint32_t length)
    : owned_(std::move(data)), length_(owned_ ? length : 0) {}

FontBuffer::~FontBuffer() {
    if (mapped_) munmap(mapped_, length_);
}

}  // namespace GxFontEffect
