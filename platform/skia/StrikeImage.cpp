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

using Picture = StrikeImage::Picture;

// Which pixels of a row or column one of the halved picture is made of, and how much of each: two
// alike, with an odd length three with the middle one twice, of a single pixel that one.
struct Taps {
    explicit Taps(int length)
        : count(length == 1 ? 1 : 2 + length % 2), weights{1, count == 3 ? 2u : 1u, 1} {}

    int count;
    unsigned weights[3];
    unsigned shift() const { return static_cast<unsigned>(count - 1); }  // of the weights' sum
};

// The device's mipmaps: means of 2 by 2, or up to 3 by 3, cut to whole numbers.
Picture halved(const Picture& from) {
    Picture to;
    to.width = std::max(from.width / 2, 1);
    to.height = std::max(from.height / 2, 1);
    to.pixels.reserve(static_cast<size_t>(to.width) * to.height);
    const Taps columns(from.width);
    const Taps rows(from.height);
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            unsigned sum = 0;
            for (int j = 0; j < rows.count; ++j) {
                for (int i = 0; i < columns.count; ++i) {
                    sum += rows.weights[j] * columns.weights[i] * from.at(2 * x + i, 2 * y + j);
                }
            }
            to.pixels.push_back(static_cast<uint8_t>(sum >> (rows.shift() + columns.shift())));
        }
    }
    return to;
}

// Bilinear between pixel centres, beyond the outer ones their colour; x and y from the corner.
float sample(const Picture& picture, double x, double y) {
    const int x0 = floorToInt(x - 0.5);
    const int y0 = floorToInt(y - 0.5);
    const auto fx = static_cast<float>(x - 0.5 - x0);
    const auto fy = static_cast<float>(y - 0.5 - y0);
    const auto at = [&picture](int px, int py) -> float {
        return picture.at(std::clamp(px, 0, picture.width - 1),
                          std::clamp(py, 0, picture.height - 1));
    };
    const float top = at(x0, y0) * (1 - fx) + at(x0 + 1, y0) * fx;
    const float bottom = at(x0, y0 + 1) * (1 - fx) + at(x0 + 1, y0 + 1) * fx;
    return top * (1 - fy) + bottom * fy;
}

// How often a picture is halved before it is drawn through (xx, xy; 0, yy): until the smaller of
// its scales is above a half.
int halvings(double xx, double xy, double yy) {
    const double scale = std::min(std::fabs(xx), std::fabs(yy) / std::hypot(xy / xx, 1.0));
    if (!(scale < 1)) return 0;
    return std::clamp(floorToInt(-std::log2(scale)), 0, 31);
}

}  // namespace

bool StrikeImage::assign(const FT_GlyphSlotRec& slot) {
    const FT_Bitmap& bitmap = slot.bitmap;
    const uint64_t count = static_cast<uint64_t>(bitmap.width) * bitmap.rows;
    if (!bitmap.buffer || count == 0 || count > kMaxPixels) return false;

    fPicture.width = static_cast<int>(bitmap.width);
    fPicture.height = static_cast<int>(bitmap.rows);
    fLeft = slot.bitmap_left;
    fTop = -slot.bitmap_top;
    fPicture.pixels.resize(static_cast<size_t>(count));
    // With a negative pitch the rows come bottom first, and buffer is still the first in memory.
    const ptrdiff_t pitch = bitmap.pitch;
    const uint8_t* row = bitmap.buffer;
    if (pitch < 0) row -= pitch * static_cast<ptrdiff_t>(bitmap.rows - 1);
    uint8_t* out = fPicture.pixels.data();
    for (unsigned y = 0; y < bitmap.rows; ++y, row += pitch) {
        for (unsigned x = 0; x < bitmap.width; ++x) *out++ = coverageAt(bitmap, row, x);
    }
    return true;
}

SkIRect StrikeImage::bounds(const GlyphMatrix& m, const GlyphPlacement& p) const {
    const double left = fLeft;
    const double top = fTop;
    const double right = left + fPicture.width;
    const double bottom = top + fPicture.height;
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
            if (sx < 0 || sy < 0 || sx >= fPicture.width || sy >= fPicture.height) continue;
            *out = fPicture.at(sx, sy);
        }
    }
}

// Pixels whose centre lies in the picture take its colour there.
void StrikeImage::resample(const GlyphMatrix& m, const GlyphPlacement& p, const SkIRect& window,
                           uint8_t* out) const {
    const double xx = m.xx * p.scale;
    const double xy = m.xy * p.scale;
    const double yy = m.yy * p.scale;
    Picture smaller;
    const Picture* level = &fPicture;
    for (int i = halvings(xx, xy, yy); i > 0 && std::max(level->width, level->height) > 1; --i) {
        smaller = halved(*level);
        level = &smaller;
    }
    const double columns = static_cast<double>(level->width) / fPicture.width;
    const double rows = static_cast<double>(level->height) / fPicture.height;
    // Where the picture lies, from where x is 0 in it.
    const double edges[] = {xx * fLeft, xx * (fLeft + fPicture.width)};
    const int width = window.fRight - window.fLeft;
    for (int y = window.fTop; y < window.fBottom; ++y, out += width) {
        const double sy = (y + 0.5 - p.dy) / yy;
        const double v = sy - fTop;
        if (!(v >= 0 && v < fPicture.height)) continue;
        const double zero = p.dx + xy * sy;
        const int first = floorToInt(std::min(edges[0], edges[1]) + zero);
        const int last = ceilToInt(std::max(edges[0], edges[1]) + zero);
        const int end = std::min(last + 1, window.fRight);
        for (int x = std::max(first - 1, window.fLeft); x < end; ++x) {
            const double u = (x + 0.5 - zero) / xx - fLeft;
            if (!(u >= 0 && u < fPicture.width)) continue;
            out[x - window.fLeft] =
                static_cast<uint8_t>(roundToInt(sample(*level, u * columns, v * rows)));
        }
    }
}

}  // namespace portable
