#include "raster/PlaneMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

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

struct Block {
    void* data = nullptr;
    size_t capacity = 0;
    Stain stain;
    uint64_t ended = 0;  // which of all blocks that were kept
};

Block allocate(size_t bytes, Contents contents) {
    if (bytes > PTRDIFF_MAX) return {};
    // At least one byte: an empty plane is not a failed one.
    const size_t size = std::max<size_t>(bytes, 1);
    const Block block = {
        contents == Contents::kZeros ? std::calloc(size, 1) : std::malloc(size), bytes, {}, 0};
    askForLargePages(block.data, bytes);
    return block;
}

void clear(const Block& block) {
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
    // The smallest block that holds `bytes` and is at most twice as large; else none.
    Block take(size_t bytes) {
        const std::lock_guard<std::mutex> lock(mutex_);
        Block* best = nullptr;
        for (Block* block = blocks_; block != blocks_ + count_; ++block) {
            const bool fits = block->capacity >= bytes && block->capacity / 2 <= bytes;
            if (fits && (!best || block->capacity < best->capacity)) best = block;
        }
        return best ? remove(best) : Block();
    }

    void keep(const Block& block) {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++ended_;
        while (count_ > 0 && (count_ == kMaxKept || bytes_ + block.capacity > kMaxKeptBytes ||
                              ended_ - blocks_[0].ended > kMaxAge)) {
            std::free(remove(blocks_).data);
        }
        blocks_[count_] = block;
        blocks_[count_++].ended = ended_;
        bytes_ += block.capacity;
    }

    void release() {
        const std::lock_guard<std::mutex> lock(mutex_);
        while (count_ > 0) std::free(remove(blocks_).data);
    }

private:
    Block remove(Block* block) {
        const Block removed = *block;
        std::move(block + 1, blocks_ + count_, block);
        --count_;
        bytes_ -= removed.capacity;
        return removed;
    }

    std::mutex mutex_;
    Block blocks_[kMaxKept];
    size_t count_ = 0;
    size_t bytes_ = 0;
    uint64_t ended_ = 0;
};

constinit Store store;

bool isKept(size_t bytes) {
    return bytes >= kMinKeptBytes && bytes <= kMaxKeptBytes;
}

// What cannot be addressed no allocator has.
size_t bytesOf(uint64_t width, uint64_t height, uint32_t bytesPerPixel) {
    size_t bytes = 0;
    return __builtin_mul_overflow(width * height, uint64_t{bytesPerPixel}, &bytes) ? SIZE_MAX
                                                                                   : bytes;
}

}  // namespace

PlaneMemory::PlaneMemory(size_t bytes, Contents contents) {
    Block block = isKept(bytes) ? store.take(bytes) : Block();
    if (!block.data) {
        block = allocate(bytes, contents);
    } else if (contents == Contents::kZeros) {
        clear(block);
    }
    data_ = block.data;
    capacity_ = block.capacity;
    const size_t stained = contents == Contents::kZeros ? bytes : capacity_;
    stain_ = {0, stained, stained, 1};
}

PlaneMemory::PlaneMemory(PlaneMemory&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      capacity_(other.capacity_),
      stain_(other.stain_) {}

PlaneMemory::~PlaneMemory() {
    if (data_ && isKept(capacity_)) {
        store.keep({data_, capacity_, stain_, 0});
    } else {
        std::free(data_);
    }
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

void releaseKeptPlanes() {
    store.release();
}

PlaneBitmap::PlaneBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel)
    : memory_(bytesOf(width, height, bytesPerPixel), Contents::kZeros),
      bitmap_(memory_.get(), width, height, bytesPerPixel) {}

void PlaneBitmap::setPainted(const GxRect& painted) {
    const auto inside = [](int32_t edge, uint32_t extent) {
        return std::min<size_t>(static_cast<size_t>(std::max(edge, 0)), extent);
    };
    const size_t left = inside(painted.left, bitmap_.width);
    const size_t top = inside(painted.top, bitmap_.height);
    const size_t right = std::max(inside(painted.right, bitmap_.width), left);
    const size_t bottom = std::max(inside(painted.bottom, bitmap_.height), top);
    const size_t pixel = bitmap_.bytesPerPixel;
    memory_.setStain({(top * bitmap_.width + left) * pixel, (right - left) * pixel,
                      bitmap_.width * pixel, bottom - top});
}

}  // namespace GxFontEffect
