// Memory of layers, masks and work planes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "GxExport.h"
#include "raster/BorrowedBitmap.h"
#include "raster/GxBitmap.h"

namespace GxFontEffect {

enum class Contents { kZeros, kAny };

// Rows of bytes in a block of memory, from `first` on: all that is not zero in it.
struct Stain {
    size_t first = 0;
    size_t rowBytes = 0;
    size_t stride = 0;
    size_t rows = 0;
};

// A block of the C allocator's memory. What ended blocks leave is kept for those that follow, whose
// pages need not be had again and are cleared only where they are stained: of the whole process at
// most 96 MiB, the oldest goes first, and what no render has wanted for a while. Blocks may come
// and go on any thread.
struct PlaneBlock {
    void* data = nullptr;
    size_t capacity = 0;  // bytes
    Stain stain;
};

// Without data when memory runs out. The stain is all that was asked for.
GXTEXT_API PlaneBlock takePlane(size_t bytes, Contents contents);
GXTEXT_API void endPlane(const PlaneBlock& block);
// Gives what is kept back to the allocator.
GXTEXT_API void releaseKeptPlanes();

// Asks for large pages, where the system has them, for a large block that nothing has touched. Only
// a hint.
GXTEXT_API void askForLargePages(void* memory, size_t bytes);

// Bytes of a bitmap, more than any allocator has for one that cannot be addressed; and those of
// them that a rectangle takes.
GXTEXT_API size_t bitmapBytes(uint32_t width, uint32_t height, uint32_t bytesPerPixel);
GXTEXT_API Stain stainOf(const GxBitmap& bitmap, const GxRect& painted);

// Owns a block.
class PlaneMemory {
public:
    PlaneMemory(size_t bytes, Contents contents) : block_(takePlane(bytes, contents)) {}
    PlaneMemory(PlaneMemory&& other) noexcept : block_(std::exchange(other.block_, {})) {}
    PlaneMemory& operator=(PlaneMemory&&) = delete;
    ~PlaneMemory() { endPlane(block_); }

    // Null when memory ran out.
    void* get() const { return block_.data; }
    // All that is not zero when the block ends; everything unless told otherwise.
    void setStain(const Stain& stain) { block_.stain = stain; }

private:
    PlaneBlock block_;
};

// A bitmap in such memory, zero-filled. Without data when memory runs out.
class PlaneBitmap {
public:
    PlaneBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel)
        : memory_(bitmapBytes(width, height, bytesPerPixel), Contents::kZeros),
          bitmap_(memory_.get(), width, height, bytesPerPixel) {}
    PlaneBitmap(const PlaneBitmap&) = delete;
    PlaneBitmap& operator=(const PlaneBitmap&) = delete;

    GxBitmap* get() { return &bitmap_; }
    const GxBitmap* get() const { return &bitmap_; }

    // Promises that everything outside of the rectangle is still zero.
    void setPainted(const GxRect& painted) { memory_.setStain(stainOf(bitmap_, painted)); }

private:
    PlaneMemory memory_;
    BorrowedBitmap bitmap_;
};

}  // namespace GxFontEffect
