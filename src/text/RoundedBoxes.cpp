#include "text/RoundedBoxes.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

// A word of straight alpha over a colour, each channel rounded to nearest:
//     a = s + b (255 - s) / 255, c = (c1 s 255 + c2 b (255 - s)) / (255 a).
uint32_t over(uint32_t source, uint32_t color, uint32_t coverage) {
    const uint32_t s = source >> 24;
    const uint32_t b = ((color >> 24) * coverage + 127) / 255;
    if (s == 255 || b == 0) return source;
    if (s == 0) return b << 24 | (color & 0x00FFFFFFu);
    const uint32_t weight = 255 * s + b * (255 - s);
    uint32_t result = (weight + 127) / 255 << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t upper = (source >> shift) & 0xFF;
        const uint32_t lower = (color >> shift) & 0xFF;
        const uint32_t sum = upper * s * 255 + lower * b * (255 - s);
        result |= (sum + weight / 2) / weight << shift;
    }
    return result;
}

// Coverage of the pixel that lies `x` and `y` pixels into a corner's square of `radius`.
uint8_t cornerCoverage(int64_t x, int64_t y, int64_t radius) {
    const auto dx = static_cast<float>(radius - x) - 0.5f;
    const auto dy = static_cast<float>(radius - y) - 0.5f;
    const float coverage = static_cast<float>(radius) - std::sqrt(dx * dx + dy * dy) + 0.5f;
    return static_cast<uint8_t>(toInt(clampFloat(coverage, 0.0f, 1.0f) * 255.0f + 0.5f));
}

// Takes row y of a box into a row of coverage, of which cell 0 is column clip.left.
void addRow(const GxRect& box, int64_t y, int64_t radius, const GxRect& clip, uint8_t* row) {
    const int64_t r = std::min<int64_t>({radius, box.width() / 2, box.height() / 2});
    const int64_t inCorner = std::min(y - box.top, box.bottom - 1 - y);
    const int64_t first = std::max(box.left, clip.left);
    const int64_t last = std::min(box.right, clip.right);
    for (int64_t x = first; x < last; ++x) {
        const int64_t inside = std::min(x - box.left, box.right - 1 - x);
        uint8_t& cell = row[x - clip.left];
        if (inside >= r || inCorner >= r) {
            cell = 255;
        } else {
            cell = std::max(cell, cornerCoverage(inside, inCorner, r));
        }
    }
}

bool meets(const GxRect& box, const GxRect& clip) {
    return !box.isEmpty() && box.left < clip.right && box.right > clip.left &&
           box.top < clip.bottom && box.bottom > clip.top;
}

}  // namespace

void drawBoxesUnder(const GxBitmap& picture, std::vector<GxRect> boxes, const GxRect& clip,
                    int radius, uint32_t color) {
    std::erase_if(boxes, [&](const GxRect& box) { return !meets(box, clip); });
    if (boxes.empty()) return;
    std::sort(boxes.begin(), boxes.end(),
              [](const GxRect& a, const GxRect& b) { return a.top < b.top; });
    std::vector<uint8_t> row(clip.width());
    std::vector<GxRect> open;  // boxes that the row meets
    open.reserve(boxes.size());
    auto next = boxes.cbegin();
    for (int64_t y = std::max(boxes.front().top, clip.top); y < clip.bottom; ++y) {
        std::erase_if(open, [y](const GxRect& box) { return box.bottom <= y; });
        for (; next != boxes.cend() && next->top <= y; ++next) {
            if (next->bottom > y) open.push_back(*next);
        }
        if (open.empty() && next == boxes.cend()) return;
        if (open.empty()) continue;
        std::fill(row.begin(), row.end(), uint8_t{0});
        for (const GxRect& box : open) addRow(box, y, std::max(radius, 0), clip, row.data());
        auto* words = reinterpret_cast<uint32_t*>(picture.data) + y * picture.width + clip.left;
        for (size_t x = 0; x < row.size(); ++x) {
            if (row[x] != 0) words[x] = over(words[x], color, row[x]);
        }
    }
}

}  // namespace GxFontEffect
