// Work memory of the filters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

#include "effect/GxECore.h"
#include "raster/PlaneMemory.h"

namespace GxFontEffect {

// Memory of the C allocator, released with it.
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using CArray = std::unique_ptr<T[], FreeDeleter>;

// To the next multiple, for extents that a kernel takes in steps.
constexpr int64_t roundUp(int64_t extent, int64_t step) {
    return (extent + step - 1) / step * step;
}

// Bytes of width x height elements. What no allocator has for a negative extent and for more than
// 2^31 - 1 bytes: the filters' geometry is in 32 bits, and a record with a huge size must not claim
// all memory.
template <typename T>
size_t cellBytes(int64_t width, int64_t height) {
    constexpr int64_t kMaxCount = std::numeric_limits<int32_t>::max() / int64_t{sizeof(T)};
    int64_t count = 0;
    if (width < 0 || height < 0 || __builtin_mul_overflow(width, height, &count)) return SIZE_MAX;
    if (count > kMaxCount) return SIZE_MAX;
    // At least one element: an empty plane is not a failed one.
    return (static_cast<size_t>(count) + 1) * sizeof(T);
}

// width x height zeros that outlive the filter; null like an allocation that failed.
template <typename T>
CArray<T> allocateCells(int64_t width, int64_t height) {
    const size_t bytes = cellBytes<T>(width, height);
    return CArray<T>(bytes == SIZE_MAX ? nullptr : static_cast<T*>(std::calloc(bytes, 1)));
}

// A plane, rows packed, owned. Test it before use: extents that are negative or too large fail like
// an allocation.
template <typename T>
class WorkPlane {
public:
    explicit WorkPlane(int64_t planeWidth, int64_t planeHeight = 1,
                       Contents contents = Contents::kZeros)
        : width(planeWidth),
          height(planeHeight),
          memory(cellBytes<T>(planeWidth, planeHeight), contents) {}

    explicit operator bool() const { return memory.get() != nullptr; }
    T* data() const { return static_cast<T*>(memory.get()); }
    T* row(int64_t y) const { return data() + y * width; }
    int64_t count() const { return width * height; }

    const int64_t width;
    const int64_t height;

private:
    PlaneMemory memory;
};

// Whether a filter has all of its memory; when not, the block says so.
template <typename... Memory>
bool isAllocated(GxECore::ParamPostProcessing& param, const Memory&... memory) {
    const bool all = (static_cast<bool>(memory) && ...);
    if (!all) param.outOfMemory = true;
    return all;
}

}  // namespace GxFontEffect
