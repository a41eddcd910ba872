#include "font/FontBuffer.h"

#include <android/log.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

#include "base/Descriptor.h"

namespace GxFontEffect {

namespace {

constexpr const char* kBufferTag = "GxFontManager";

// The line carries the tag alone.
void LogFileFailure() {
    __android_log_print(ANDROID_LOG_DEBUG, kBufferTag, "%s", kBufferTag);
}

// Throws bad_alloc when the call that has just failed may succeed later.
void ThrowIfShort() {
    if (errno == ENOMEM || errno == EMFILE || errno == ENFILE) throw std::bad_alloc();
}

// Lengths are kept in 32 bits, as the font API has them.
bool IsFontFile(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_size > 0 &&
           static_cast<uint64_t>(status.st_size) <= UINT32_MAX;
}

bool IsOnReadOnlyFileSystem(int file) {
    struct statvfs status;
    return fstatvfs(file, &status) == 0 && (status.f_flag & ST_RDONLY) != 0;
}

// False as well when the file ends before `length`.
bool ReadFully(int file, char* data, size_t length) {
    while (length > 0) {
        const ssize_t count = read(file, data, length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ThrowIfShort();
        if (count <= 0) return false;
        data += count;
        length -= static_cast<size_t>(count);
    }
    return true;
}

}  // namespace

std::shared_ptr<const FontBuffer> FontBuffer::LoadFile(const char* path) {
    const auto buffer = std::make_shared<FontBuffer>(nullptr, 0);
    // Not blocking: opening a pipe would wait for its writer.
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0) {
        ThrowIfShort();
        LogFileFailure();
    } else if (IsFontFile(status)) {
        const auto length = static_cast<uint32_t>(status.st_size);
        if (length > kMaxReadBytes || IsOnReadOnlyFileSystem(file.get())) {
            buffer->Map(file.get(), length);
        } else {
            buffer->Read(file.get(), length);
        }
    }
    return buffer;
}

FontBuffer::FontBuffer(std::unique_ptr<char[]> data, uint32_t length)
    : owned_(std::move(data)), length_(owned_ ? length : 0) {}

FontBuffer::~FontBuffer() {
    if (mapped_) munmap(mapped_, length_);
}

void FontBuffer::Read(int file, uint32_t length) {
    // Not filled with zeros first.
    std::unique_ptr<char[]> data(new char[length]);
    if (!ReadFully(file, data.get(), length)) return;
    owned_ = std::move(data);
    length_ = length;
}

void FontBuffer::Map(int file, uint32_t length) {
    void* mapped = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file, 0);
    if (mapped == MAP_FAILED) return ThrowIfShort();
    mapped_ = mapped;
    length_ = length;
}

}  // namespace GxFontEffect
