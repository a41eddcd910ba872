// A set of code points.
#pragma once

#include <hb.h>

#include <cstdint>

#include "minikin/HbUtils.h"

namespace minikin {

// Immutable; safe from any thread.
class SparseBitSet {
public:
    SparseBitSet();
    // As HarfBuzz collected it.
    explicit SparseBitSet(HbSetUniquePtr set);

    bool get(uint32_t value) const { return value < mLength && hb_set_has(mSet.get(), value); }

    // One more than the largest value, at most 0x110000; 0 for the empty set.
    uint32_t length() const { return mLength; }
    bool empty() const { return mLength == 0; }

private:
    HbSetUniquePtr mSet;
    uint32_t mLength = 0;
};

}  // namespace minikin
