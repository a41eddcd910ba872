// Copies of a render's masks, for effects that run over each line by itself.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "raster/GxBitmap.h"
#include "raster/GxGlyph.h"

namespace GxFontEffect {

class LineMasks {
public:
    void clear() { lines.clear(); }
    // Copies the mask that lies at (x, y) and that of its letters alone, null where the two are the
    // same. False when memory ran out.
    bool keep(int x, int y, const GxGlyph& glyph, const uint8_t* letters);

    // Calls step(mask, box) for each mask, or that of its letters, that `extent` shows any of,
    // alone in a bitmap of that one's size with its box cut to it. False when memory ran out.
    template <typename Step>
    bool forEach(const GxBitmap& extent, bool ofLetters, Step step) const {
        GxBitmap alone(extent.width, extent.height, 1);
        if (!alone.data) return lines.empty();
        for (const Line& line : lines) {
            GxRect box = line.cutTo(extent);
            if (box.isEmpty()) continue;
            line.drawInto(alone, ofLetters);
            step(alone, box);
            clear(alone, box);
        }
        return true;
    }

private:
    struct Line {
        GxRect cutTo(const GxBitmap& bitmap) const;
        void drawInto(const GxBitmap& mask, bool ofLetters) const;

        int32_t x;
        int32_t y;
        uint16_t width;
        uint16_t height;
        std::unique_ptr<uint8_t[]> pixels;
        std::unique_ptr<uint8_t[]> letters;
    };

    static void clear(const GxBitmap& mask, const GxRect& box);

    std::vector<Line> lines;
};

}  // namespace GxFontEffect
