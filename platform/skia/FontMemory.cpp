#include "skia/FontMemory.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace portable {

namespace {

// Blocks one behind the other; the place is used anew when the last of them is gone, soon after the
// call in which memory ran out: faces that used it are closed.
class Reserve {
public:
    static constexpr size_t kMaxBlock = size_t{1} << 12;

    void* take(size_t size) {
        const std::lock_guard<std::mutex> lock(fMutex);
        constexpr size_t kAlignment = alignof(std::max_align_t);
        const size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
        if (size > kMaxBlock || rounded > sizeof(fBytes) - fUsed) return nullptr;
        void* block = fBytes + fUsed;
        fUsed += rounded;
        ++fBlocks;
        return block;
    }

    // False when the block is not the reserve's.
    bool giveBack(const void* block) {
        if (!this->contains(block)) return false;
        const std::lock_guard<std::mutex> lock(fMutex);
        if (--fBlocks == 0) fUsed = 0;
        return true;
    }

    bool contains(const void* block) const {
        const auto* byte = static_cast<const unsigned char*>(block);
        return byte >= fBytes && byte < fBytes + sizeof(fBytes);
    }

private:
    std::mutex fMutex;
    size_t fUsed = 0;
    size_t fBlocks = 0;
    alignas(std::max_align_t) unsigned char fBytes[size_t{1} << 18];
};

Reserve gReserve;

void* fromReserve(size_t size) {
    errno = ENOMEM;
    return gReserve.take(size);
}

void* allocate(FT_Memory /*memory*/, long size) {
    const auto bytes = static_cast<size_t>(size);
    void* block = std::malloc(bytes);
    return block ? block : fromReserve(bytes);
}

void release(FT_Memory /*memory*/, void* block) {
    if (!gReserve.giveBack(block)) std::free(block);
}

void* reallocate(FT_Memory memory, long size, long wanted, void* block) {
    const auto bytes = static_cast<size_t>(wanted);
    if (!gReserve.contains(block)) {
        if (void* moved = std::realloc(block, bytes)) return moved;
    }
    void* moved = gReserve.contains(block) ? allocate(memory, wanted) : fromReserve(bytes);
    if (!moved) return nullptr;
    std::memcpy(moved, block, static_cast<size_t>(std::min(size, wanted)));
    release(memory, block);
    return moved;
}

FT_MemoryRec_ gMemory = {nullptr, allocate, release, reallocate};

}  // namespace

FT_Memory fontMemory() {
    return &gMemory;
}

}  // namespace portable
