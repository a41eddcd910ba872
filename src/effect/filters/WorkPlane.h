// Work memory of the filters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

#include "effect/GxECore.h"

namespace GxFontEffect {

// Memory of the C allocator, released with it.
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using CArray = std::unique_ptr<T[], FreeDeleter>;

enum class Contents { kZeros, kAny };

// width x height elements. Null when memory runs out, for a negative extent, and for more
// than 2^31 - 1 bytes: the filters' geometry is in 32 bits, and a record with a huge size must not
// claim all memory.
template <typename T>
CArray<T> allocateCells(int64_t width, int64_t height, Contents contents = Contents::kZeros) {
    constexpr int64_t kMaxCount = std::numeric_limits<int32_t>::max() / int64_t{sizeof(T)};
    int64_t count = 0;
    if (width < 0 || height < 0 || __builtin_mul_overflow(width, height, &count)) return nullptr;
    if (count > kMaxCount) return nullptr;
    // At least one element: an empty plane is not a failed one.
    const auto cells = static_cast<size_t>(count) + 1;
    return CArray<T>(static_cast<T*>(contents == Contents::kZeros
                                         ? std::calloc(cells, sizeof(T))
                                         : std::malloc(cells * sizeof(T))));
}

// A filter's large planes are best one allocation: allocators hand the memory of several back to
// the system after each call, and fetching its pages again takes longer than most filters do.
//
// A plane, rows packed, owned. Test it before use: extents that are negative or too large fail like
// an allocation.
template <typename T>
class WorkPlane {
public:
    explicit WorkPlane(int64_t planeWidth, int64_t planeHeight = 1,
                       Contents contents = Contents::kZeros)
        : width(planeWidth),
          height(planeHeight),
          cells(allocateCells<T>(planeWidth, planeHeight, contents)) {}

    explicit operator bool() const { return cells != nullptr; }
    T* data() const { return cells.get(); }
    T* row(int64_t y) const { return cells.get() + y * width; }
    int64_t count() const { return width * height; }

    const int64_t width;
    const int64_t height;

private:
    CArray<T> cells;
};

// Whether a filter has all of its memory; when not, the block says so.
template <typename... Memory>
bool isAllocated(GxECore::ParamPostProcessing& param, const Memory&... memory) {
    const bool all = (static_cast<bool>(memory) && ...);
    if (!all) param.outOfMemory = true;
    return all;
}

}  // namespace GxFontEffect
