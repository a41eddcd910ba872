// Small integer types shared by the headers.
#pragma once

#include <cstddef>
#include <cstdint>

typedef int32_t SkUnichar;
typedef uint16_t SkGlyphID;
// Four ASCII characters, the first in the highest byte.
typedef uint32_t SkFourByteTag;
