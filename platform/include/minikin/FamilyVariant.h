// Vertical shape of a family: scripts with tall glyphs come as a compact and as an elegant family.
#pragma once

#include <cstdint>

namespace minikin {

enum class FamilyVariant : uint8_t {
    DEFAULT = 0,
    COMPACT = 1,
    ELEGANT = 2,
};

}  // namespace minikin
