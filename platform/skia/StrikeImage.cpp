#include "skia/StrikeImage.h"

#include <algorithm>
#include <cmath>

#include "skia/Numbers.h"

namespace portable {

namespace {

// Coverage of pixel x in a bitmap's row.
uint8_t coverageAt(const FT_Bitmap& bitmap, const uint8_t* row, unsigned x) {
    switch (bitmap.pixel_mode) {
        case FT_PIXEL_MODE_MONO:
            return (row[x >> 3] >> (7 - (x & 7)) & 1) * 255;
        case FT_PIXEL_MODE_GRAY2:
            return (row[x >> 2] >> (6 - 2 * (x & 3)) & 3) * 85;
        case FT_PIXEL_MODE_GRAY4:
            return (row[x >> 1] >> (4 - 4 * (x & 1)) & 15) * 17;
        case FT_PIXEL_MODE_GRAY:
            return row[x];
        case FT_PIXEL_MODE_BGRA:
            return row[4 * static_cast<size_t>(x) + 3];
        default:
            return 0;
    }
}

// How many samples a pixel takes along one side when the picture is scaled by this.
int samplesPerPixel(double scale) {
    constexpr int kMaxSamples = 64;
    return std::clamp(ceilToInt(1 / std::fabs(scale)), 1, kMaxSamples);
}

}  // namespace

bool StrikeImage::assign(const FT_GlyphSlotRec& slot) {
    const FT_Bitmap& bitmap = slot.bitmap;
    const uint64_t count = static_cast<uint64_t>(bitmap.width) * bitmap.rows;
    if (!bitmap.buffer || count == 0 || count > kMaxPixels) return false;

    fWidth = static_cast<int>(bitmap.width);
    fHeight = static_cast<int>(bitmap.rows);
    fLeft = slot.bitmap_left;
    fTop = -slot.bitmap_top;
    fPixels.resize(static_cast<size_t>(count));
    // With a negative pitch the rows come bottom first, and buffer is still the first in memory.
    const ptrdiff_t pitch = bitmap.pitch;
    const uint8_t* row = bitmap.buffer;
    if (pitch < 0) row -= pitch * static_cast<ptrdiff_t>(bitmap.rows - 1);
    uint8_t* out = fPixels.data();
    for (unsigned y = 0; y < bitmap.rows; ++y, row += pitch) {
        for (unsigned x = 0; x < bitmap.width; ++x) *out++ = coverageAt(bitmap, row, x);
    }
    return true;
}

SkIRect StrikeImage::bounds(const GlyphMatrix& m, const GlyphPlacement& p) const {
    const double left = fLeft;
    const double top = fTop;
    const double right = left + fWidth;
    const double bottom = top + fHeight;
    // The corners' x are xx * x + xy * y: each extreme is a sum of extremes.
    const double x0 = std::min(m.xx * left, m.xx * right) + std::min(m.xy * top, m.xy * bottom);
    const double x1 = std::max(m.xx * left, m.xx * right) + std::max(m.xy * top, m.xy * bottom);
    return SkIRect::MakeLTRB(
        floorToInt(x0 * p.scale + p.dx), floorToInt(m.yy * top * p.scale + p.dy),
        ceilToInt(x1 * p.scale + p.dx), ceilToInt(m.yy * bottom * p.scale + p.dy));
}

void StrikeImage::render(const GlyphMatrix& matrix, const GlyphPlacement& placement,
                         const SkIRect& window, uint8_t* out) const {
    if (matrix.isIdentity() && placement.scale == 1) {
        this->copy(placement, window, out);
    } else {
        this->resample(matrix, placement, window, out);
    }
}

// Unscaled pictures keep to whole pixels.
void StrikeImage::copy(const GlyphPlacement& p, const SkIRect& window, uint8_t* out) const {
    const int dx = floorToInt(p.dx) + fLeft;
    const int dy = floorToInt(p.dy) + fTop;
    for (int y = window.fTop; y < window.fBottom; ++y) {
        for (int x = window.fLeft; x < window.fRight; ++x, ++out) {
            const int sx = x - dx;
            const int sy = y - dy;
            if (sx < 0 || sy < 0 || sx >= fWidth || sy >= fHeight) continue;
            *out = fPixels[static_cast<size_t>(sy) * fWidth + sx];
        }
    }
}

// Bilinear between pixel centres, nothing outside; x and y from the picture's corner.
float StrikeImage::sample(double x, double y) const {
    const int x0 = floorToInt(x - 0.5);
    const int y0 = floorToInt(y - 0.5);
    const auto fx = static_cast<float>(x - 0.5 - x0);
    const auto fy = static_cast<float>(y - 0.5 - y0);
    const auto at = [this](int px, int py) -> float {
        if (px < 0 || py < 0 || px >= fWidth || py >= fHeight) return 0;
        return fPixels[static_cast<size_t>(py) * fWidth + px];
    };
    const float top = at(x0, y0) * (1 - fx) + at(x0 + 1, y0) * fx;
    const float bottom = at(x0, y0 + 1) * (1 - fx) + at(x0 + 1, y0 + 1) * fx;
    return top * (1 - fy) + bottom * fy;
}

// Each pixel is the mean of samples on a grid, as many to each side as the pixel spans of the
// picture's: a box when shrinking, bilinear when growing. A row of samples meets the picture in few
// pixels when it leans or shrinks far, so that only these are visited.
void StrikeImage::resample(const GlyphMatrix& m, const GlyphPlacement& p, const SkIRect& window,
                           uint8_t* out) const {
    const double xx = m.xx * p.scale;
    const double xy = m.xy * p.scale;
    const double yy = m.yy * p.scale;
    const int columns = samplesPerPixel(xx);
    const int rows = samplesPerPixel(yy);
    // Where the picture and its fading edge lie, from where x is 0 in it.
    const double edges[] = {xx * (fLeft - 1), xx * (fLeft + fWidth + 1)};
    std::vector<float> sums(static_cast<size_t>(window.fRight - window.fLeft));
    for (int y = window.fTop; y < window.fBottom; ++y) {
        std::fill(sums.begin(), sums.end(), 0.0f);
        for (int j = 0; j < rows; ++j) {
            const double sy = (y + (j + 0.5) / rows - p.dy) / yy;
            const double zero = p.dx + xy * sy;
            const int first = floorToInt(std::min(edges[0], edges[1]) + zero);
            const int last = ceilToInt(std::max(edges[0], edges[1]) + zero);
            const int end = std::min(last + 1, window.fRight);
            for (int x = std::max(first - 1, window.fLeft); x < end; ++x) {
                for (int i = 0; i < columns; ++i) {
                    const double sx = (x + (i + 0.5) / columns - p.dx - xy * sy) / xx;
                    sums[static_cast<size_t>(x - window.fLeft)] +=
                        this->sample(sx - fLeft, sy - fTop);
                }
            }
        }
        for (const float sum : sums) {
            *out++ = static_cast<uint8_t>(roundToInt(sum / static_cast<float>(columns * rows)));
        }
    }
}

}  // namespace portable
