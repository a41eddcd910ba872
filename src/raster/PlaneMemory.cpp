#include "raster/PlaneMemory.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace GxFontEffect {

namespace {

// A picture of 20 megapixels and its mask. What is below the minimum the allocator gives in no
// time.
constexpr size_t kMaxKeptBytes = size_t{96} << 20;
constexpr size_t kMinKeptBytes = size_t{32} << 10;
constexpr size_t kMaxKept = 16;
// In blocks that ended since: some twenty renders in a row did not want it.
constexpr uint64_t kMaxAge = 256;

// From here on the first pass over fresh memory is mostly page faults: measured, it writes 2.7 GB/s
// in pages of 4 KiB and 17 to 20 in pages of 2 MiB. Smaller blocks may hold no such page whole.
constexpr size_t kLargeBytes = size_t{4} << 20;
constexpr uintptr_t kPageBytes = size_t{64} << 10;  // at least the system's

PlaneBlock allocate(size_t bytes, Contents contents) {
    if (bytes > PTRDIFF_MAX) return {};
    // At least one byte: an empty plane is not a failed one.
    const size_t size = std::max<size_t>(bytes, 1);
    void* data = contents == Contents::kZeros ? std::calloc(size, 1) : std::malloc(size);
    askForLargePages(data, bytes);
    return {data, bytes, {}};
}

void clear(const PlaneBlock& block) {
    const Stain& stain = block.stain;
    auto* row = static_cast<uint8_t*>(block.data) + stain.first;
    if (stain.rowBytes == stain.stride) {
        std::memset(row, 0, stain.stride * stain.rows);
        return;
    }
    for (size_t y = 0; y < stain.rows; ++y) std::memset(row + y * stain.stride, 0, stain.rowBytes);
}

// The oldest first. Without a destructor: blocks may end after every static object.
class Store {
public:
    // The smallest block that holds `bytes` and is at most twice as large, one that this thread
    // ended before others, which lie in the caches of other processors; else none, and then the
    // largest that the new one will do for as well goes.
    PlaneBlock take(size_t bytes) {
        const pthread_t self = pthread_self();
        const std::lock_guard<std::mutex> lock(mutex_);
        Kept* best = nullptr;
        Kept* superseded = nullptr;
        for (Kept* kept = kept_; kept != kept_ + count_; ++kept) {
            const size_t capacity = kept->block.capacity;
            if (capacity >= bytes && capacity / 2 <= bytes) {
                const bool isCloser = best && kept->thread == self && best->thread != self;
                const bool isAsClose = best && (kept->thread == self) == (best->thread == self);
                if (!best || isCloser || (isAsClose && capacity < best->block.capacity))
                    best = kept;
            } else if (capacity < bytes && bytes / 2 <= capacity) {
                if (!superseded || capacity > superseded->block.capacity) superseded = kept;
            }
        }
        if (best) return remove(best);
        if (superseded) std::free(remove(superseded).data);
        return {};
    }

    void keep(const PlaneBlock& block) {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++ended_;
        while (count_ > 0 && (count_ == kMaxKept || bytes_ + block.capacity > kMaxKeptBytes ||
                              ended_ - kept_[0].ended > kMaxAge)) {
            std::free(remove(kept_).data);
        }
        kept_[count_++] = {block, ended_, pthread_self()};
        bytes_ += block.capacity;
    }

    void release() {
        const std::lock_guard<std::mutex> lock(mutex_);
        while (count_ > 0) std::free(remove(kept_).data);
    }

private:
    struct Kept {
        PlaneBlock block;
        uint64_t ended = 0;  // as which of all blocks that were kept
        pthread_t thread{};  // that ended it
    };

    PlaneBlock remove(Kept* kept) {
        const PlaneBlock removed = kept->block;
        std::move(kept + 1, kept_ + count_, kept);
        --count_;
        bytes_ -= removed.capacity;
        return removed;
    }

    std::mutex mutex_;
    Kept kept_[kMaxKept];
    size_t count_ = 0;
    size_t bytes_ = 0;
    uint64_t ended_ = 0;
};

constinit Store store;

bool isKept(size_t bytes) {
    return bytes >= kMinKeptBytes && bytes <= kMaxKeptBytes;
}

}  // namespace

PlaneBlock takePlane(size_t bytes, Contents contents) {
    PlaneBlock block = isKept(bytes) ? store.take(bytes) : PlaneBlock();
    if (!block.data) {
        block = allocate(bytes, contents);
    } else if (contents == Contents::kZeros) {
        clear(block);
    }
    const size_t stained = contents == Contents::kZeros ? bytes : block.capacity;
    block.stain = {0, stained, stained, 1};
    return block;
}

void endPlane(const PlaneBlock& block) {
    if (block.data && isKept(block.capacity)) {
        store.keep(block);
    } else {
        std::free(block.data);
    }
}

void releaseKeptPlanes() {
    store.release();
}

void askForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#ifdef MADV_HUGEPAGE
    if (!memory || bytes < kLargeBytes) return;
    const uintptr_t first = reinterpret_cast<uintptr_t>(memory) + kPageBytes - 1;
    const uintptr_t end = reinterpret_cast<uintptr_t>(memory) + bytes;
    const uintptr_t begin = first - first % kPageBytes;
    madvise(reinterpret_cast<void*>(begin), end - end % kPageBytes - begin, MADV_HUGEPAGE);
#endif
}

size_t bitmapBytes(uint32_t width, uint32_t height, uint32_t bytesPerPixel) {
    size_t bytes = 0;
    const uint64_t pixels = uint64_t{width} * height;
    return __builtin_mul_overflow(pixels, uint64_t{bytesPerPixel}, &bytes) ? SIZE_MAX : bytes;
}

Stain stainOf(const GxBitmap& bitmap, const GxRect& painted) {
    const auto inside = [](int32_t edge, uint32_t extent) {
        return std::min<size_t>(static_cast<size_t>(std::max(edge, 0)), extent);
    };
    const size_t left = inside(painted.left, bitmap.width);
    const size_t top = inside(painted.top, bitmap.height);
    const size_t right = std::max(inside(painted.right, bitmap.width), left);
    const size_t bottom = std::max(inside(painted.bottom, bitmap.height), top);
    const size_t pixel = bitmap.bytesPerPixel;
    return {(top * bitmap.width + left) * pixel, (right - left) * pixel, bitmap.width * pixel,
            bottom - top};
}

}  // namespace GxFontEffect
