#include "SkStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace {

std::shared_ptr<const void> copyBytes(const void* data, size_t length) {
    std::unique_ptr<uint8_t[]> copy(new (std::nothrow) uint8_t[length]);
    if (!copy) return nullptr;
    std::memcpy(copy.get(), data, length);
    return std::shared_ptr<const uint8_t[]>(std::move(copy));
}

}  // namespace

SkMemoryStream::SkMemoryStream(const void* data, size_t length, bool copyData) {
    if (!data || length == 0) return;
    fData = copyData ? copyBytes(data, length)
                     : std::shared_ptr<const void>(std::shared_ptr<const void>(), data);
    if (fData) fLength = length;
}

SkMemoryStream::SkMemoryStream(std::shared_ptr<const void> data, size_t length)
    : fData(std::move(data)), fLength(length) {}

size_t SkMemoryStream::read(void* buffer, size_t size) {
    const size_t count = std::min(size, fLength - fOffset);
    if (buffer && count > 0) {
        std::memcpy(buffer, static_cast<const uint8_t*>(fData.get()) + fOffset, count);
    }
    fOffset += count;
    return count;
}

bool SkMemoryStream::rewind() {
    return this->seek(0);
}

bool SkMemoryStream::seek(size_t position) {
    fOffset = std::min(position, fLength);
    return true;
}

SkStreamAsset* SkMemoryStream::onDuplicate() const {
    return new SkMemoryStream(fData, fLength);
}
