// Memory of layers, masks and work planes.
#pragma once

#include <cstddef>
#include <cstdint>

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

// A block of the C allocator's memory, owned. What ended blocks leave is kept for those that
// follow, whose pages need not be had again and are cleared only where they are stained: of the
// whole process at most 96 MiB, the oldest goes first, and what no render has wanted for a while.
// Blocks may come and go on any thread.
class PlaneMemory {
public:
    // Null when memory runs out.
    PlaneMemory(size_t bytes, Contents contents);
    PlaneMemory(PlaneMemory&& other) noexcept;
    PlaneMemory& operator=(PlaneMemory&&) = delete;
    ~PlaneMemory();

    void* get() const { return data_; }
    // All that is not zero when the block ends; everything unless told otherwise.
    void setStain(const Stain& stain) { stain_ = stain; }

private:
    void* data_ = nullptr;
    size_t capacity_ = 0;  // bytes
    Stain stain_;
};

// Gives what is kept back to the allocator.
void releaseKeptPlanes();

// Asks for large pages, where the system has them, for a large block that nothing has touched. Only
// a hint.
void askForLargePages(void* memory, size_t bytes);

// A bitmap in such memory, zero-filled. Without data when memory runs out.
class PlaneBitmap {
public:
    PlaneBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel);
    PlaneBitmap(const PlaneBitmap&) = delete;
    PlaneBitmap& operator=(const PlaneBitmap&) = delete;

    GxBitmap* get() { return &bitmap_; }
    const GxBitmap* get() const { return &bitmap_; }

    // Promises that everything outside of the rectangle is still zero.
    void setPainted(const GxRect& painted);

private:
    PlaneMemory memory_;
    BorrowedBitmap bitmap_;
};

}  // namespace GxFontEffect
