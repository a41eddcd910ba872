#include "minikin/SparseBitSet.h"

#include <algorithm>
#include <utility>

namespace minikin {

SparseBitSet::SparseBitSet() : mSet(hb_set_get_empty()) {}

SparseBitSet::SparseBitSet(HbSetUniquePtr set) : mSet(std::move(set)) {
    constexpr uint32_t kCodePoints = 0x110000;
    if (!hb_set_is_empty(mSet.get())) {
        mLength = std::min(hb_set_get_max(mSet.get()), kCodePoints - 1) + 1;
    }
}

}  // namespace minikin
