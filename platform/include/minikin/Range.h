// Half-open range of UTF-16 offsets.
#pragma once

#include <algorithm>
#include <cstdint>

namespace minikin {

class Range {
public:
    Range() = default;
    Range(uint32_t start, uint32_t end) : mStart(start), mEnd(end) {}

    uint32_t getStart() const { return mStart; }
    uint32_t getEnd() const { return mEnd; }
    uint32_t getLength() const { return mEnd - mStart; }
    bool isEmpty() const { return mStart >= mEnd; }

    // Empty, at an unspecified place, when the two do not meet.
    static Range intersection(const Range& a, const Range& b) {
        const uint32_t start = std::max(a.mStart, b.mStart);
        return Range(start, std::max(start, std::min(a.mEnd, b.mEnd)));
    }

private:
    uint32_t mStart = 0;
    uint32_t mEnd = 0;
};

}  // namespace minikin
