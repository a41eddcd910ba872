#include "effect/LineMasks.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "raster/GxBlender.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

bool LineMasks::keep(int x, int y, const GxGlyph& glyph, const uint8_t* letters) {
    const size_t count = size_t{glyph.width} * glyph.height;
    if (!glyph.pixels || count == 0) return true;
    Line line{x, y, glyph.width, glyph.height, nullptr, nullptr};
    const auto copy = [count](const uint8_t* from, std::unique_ptr<uint8_t[]>& to) {
        to.reset(new (std::nothrow) uint8_t[count]);
        if (to) std::memcpy(to.get(), from, count);
        return to != nullptr;
    };
    if (!copy(glyph.pixels, line.pixels)) return false;
    if (letters && !copy(letters, line.letters)) return false;
    try {
        lines.push_back(std::move(line));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

GxRect LineMasks::Line::cutTo(const GxBitmap& bitmap) const {
    const auto place = [](int64_t edge, uint32_t extent) {
        return static_cast<int32_t>(std::clamp<int64_t>(edge, 0, saturateInt(extent)));
    };
    return {place(x, bitmap.width), place(y, bitmap.height),
            place(int64_t{x} + width, bitmap.width), place(int64_t{y} + height, bitmap.height)};
}

void LineMasks::Line::drawInto(const GxBitmap& mask, bool ofLetters) const {
    const uint8_t* shown = ofLetters && letters ? letters.get() : pixels.get();
    GxBlender().drawBitmap8To8(x, y, &mask, shown, width, height);
}

void LineMasks::clear(const GxBitmap& mask, const GxRect& box) {
    for (int64_t y = box.top; y < box.bottom; ++y) {
        std::memset(mask.data + y * mask.width + box.left, 0, box.width());
    }
}

}  // namespace GxFontEffect
