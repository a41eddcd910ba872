// A view of UTF-16 text; lone surrogates are allowed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "minikin/Range.h"

namespace minikin {

class U16StringPiece {
public:
    U16StringPiece() = default;
    U16StringPiece(const uint16_t* data, size_t length)
        : mData(data), mLength(data ? static_cast<uint32_t>(length) : 0) {}

    const uint16_t* data() const { return mData; }
    uint32_t size() const { return mLength; }
    uint32_t length() const { return mLength; }
    uint16_t operator[](uint32_t i) const { return mData[i]; }

    // The range must lie inside the text.
    U16StringPiece substr(const Range& range) const {
        return U16StringPiece(mData + range.getStart(), range.getLength());
    }

private:
    const uint16_t* mData = nullptr;
    uint32_t mLength = 0;
};

}  // namespace minikin
