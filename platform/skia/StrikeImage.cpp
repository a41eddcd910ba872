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
template <size_t kChannels>
Picture halvedChannels(const Picture& from) {
    Picture to;
    to.width = std::max(from.width / 2, 1);
    to.height = std::max(from.height / 2, 1);
    to.channels = kChannels;
    to.pixels.resize(static_cast<size_t>(to.width) * to.height * kChannels);
    const Taps columns(from.width);
    const Taps rows(from.height);
    uint8_t* out = to.pixels.data();
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            unsigned sums[kChannels] = {};
            for (int j = 0; j < rows.count; ++j) {
                for (int i = 0; i < columns.count; ++i) {
                    const uint8_t* pixel = from.at(2 * x + i, 2 * y + j);
                    const unsigned weight = rows.weights[j] * columns.weights[i];
                    for (size_t c = 0; c < kChannels; ++c) sums[c] += weight * pixel[c];
                }
            }
            for (const unsigned sum : sums) {
                *out++ = static_cast<uint8_t>(sum >> (rows.shift() + columns.shift()));
            }
        }
    }
    return to;
}

Picture halved(const Picture& from) {
    return from.channels == 1 ? halvedChannels<1>(from) : halvedChannels<4>(from);
}

// The two pixels of a row or column between whose centres a place lies, beyond the outer ones twice
// the same, and how far from the first.
struct Between {
    Between(double place, int length) {
        const int below = floorToInt(place - 0.5);
        part = static_cast<float>(place - 0.5 - below);
        first = std::clamp(below, 0, length - 1);
        second = std::clamp(below + 1, 0, length - 1);
    }

    int first;
    int second;
    float part;
};

// Bilinear, channels kFirst to kFirst + kChannels - 1.
template <size_t kFirst, size_t kChannels>
void sample(const Picture& picture, const Between& x, const Between& y, uint8_t* out) {
    const uint8_t* corners[] = {picture.at(x.first, y.first), picture.at(x.second, y.first),
                                picture.at(x.first, y.second), picture.at(x.second, y.second)};
    for (size_t c = kFirst; c < kFirst + kChannels; ++c) {
        const auto at = [&](int corner) -> float { return corners[corner][c]; };
        const float top = at(0) * (1 - x.part) + at(1) * x.part;
        const float bottom = at(2) * (1 - x.part) + at(3) * x.part;
        // Between 0 and 255: cutting what is half more rounds to the nearest.
        *out++ = static_cast<uint8_t>(top * (1 - y.part) + bottom * y.part + 0.5f);
    }
}

// How often a picture is halved before it is drawn through (xx, xy; 0, yy): until the smaller of
// its scales is above a half.
int halvings(double xx, double xy, double yy) {
    const double lean = xy / xx;
    double scale = std::min(std::fabs(xx), std::fabs(yy) / std::sqrt(lean * lean + 1));
    int count = 0;
    for (; count < 31 && scale <= 0.5; scale *= 2) ++count;
    return count;
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
    const bool colored = bitmap.pixel_mode == FT_PIXEL_MODE_BGRA;
    fPicture.channels = colored ? 4 : 1;
    fPicture.pixels.resize(static_cast<size_t>(count) * fPicture.channels);
    // With a negative pitch the rows come bottom first, and buffer is still the first in memory.
    const ptrdiff_t pitch = bitmap.pitch;
    const uint8_t* row = bitmap.buffer;
    if (pitch < 0) row -= pitch * static_cast<ptrdiff_t>(bitmap.rows - 1);
    uint8_t* out = fPicture.pixels.data();
    for (unsigned y = 0; y < bitmap.rows; ++y, row += pitch) {
        if (!colored) {
            for (unsigned x = 0; x < bitmap.width; ++x) *out++ = coverageAt(bitmap, row, x);
            continue;
        }
        for (const uint8_t* bgra = row; bgra < row + size_t{4} * bitmap.width; bgra += 4) {
            const uint8_t alpha = bgra[3];
            for (const int channel : {2, 1, 0}) *out++ = std::min(bgra[channel], alpha);
            *out++ = alpha;
        }
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
    const SkIRect box = SkIRect::MakeLTRB(
        floorToInt(x0 * p.scale + p.dx), floorToInt(m.yy * top * p.scale + p.dy),
        ceilToInt(x1 * p.scale + p.dx), ceilToInt(m.yy * bottom * p.scale + p.dy));
    return box.isEmpty() ? SkIRect::MakeEmpty() : box;
}

template <size_t kFirst, size_t kChannels>
void StrikeImage::draw(const GlyphMatrix& matrix, const GlyphPlacement& placement,
                       const SkIRect& window, uint8_t* out) const {
    if (matrix.isIdentity() && placement.scale == 1) {
        this->copy<kFirst, kChannels>(placement, window, out);
    } else {
        this->resample<kFirst, kChannels>(matrix, placement, window, out);
    }
}

void StrikeImage::render(const GlyphMatrix& matrix, const GlyphPlacement& placement,
                         const SkIRect& window, uint8_t* out) const {
    if (this->isColored()) {
        this->draw<3, 1>(matrix, placement, window, out);
    } else {
        this->draw<0, 1>(matrix, placement, window, out);
    }
}

void StrikeImage::renderColors(const GlyphMatrix& matrix, const GlyphPlacement& placement,
                               const SkIRect& window, uint8_t* out) const {
    if (this->isColored()) this->draw<0, 4>(matrix, placement, window, out);
}

// Unscaled pictures keep to whole pixels.
template <size_t kFirst, size_t kChannels>
void StrikeImage::copy(const GlyphPlacement& p, const SkIRect& window, uint8_t* out) const {
    const int dx = floorToInt(p.dx) + fLeft;
    const int dy = floorToInt(p.dy) + fTop;
    for (int y = window.fTop; y < window.fBottom; ++y) {
        for (int x = window.fLeft; x < window.fRight; ++x, out += kChannels) {
            const int sx = x - dx;
            const int sy = y - dy;
            if (sx < 0 || sy < 0 || sx >= fPicture.width || sy >= fPicture.height) continue;
            std::copy_n(fPicture.at(sx, sy) + kFirst, kChannels, out);
        }
    }
}

// Pixels whose centre lies in the picture take its colour there.
template <size_t kFirst, size_t kChannels>
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
    for (int y = window.fTop; y < window.fBottom; ++y, out += kChannels * width) {
        const double sy = (y + 0.5 - p.dy) / yy;
        const double v = sy - fTop;
        if (!(v >= 0 && v < fPicture.height)) continue;
        const Between across(v * rows, level->height);
        const double zero = p.dx + xy * sy;
        const int first = floorToInt(std::min(edges[0], edges[1]) + zero);
        const int last = ceilToInt(std::max(edges[0], edges[1]) + zero);
        const int end = std::min(last + 1, window.fRight);
        for (int x = std::max(first - 1, window.fLeft); x < end; ++x) {
            const double u = (x + 0.5 - zero) / xx - fLeft;
            if (!(u >= 0 && u < fPicture.width)) continue;
            sample<kFirst, kChannels>(*level, Between(u * columns, level->width), across,
                                      out + kChannels * (x - window.fLeft));
        }
    }
}

}  // namespace portable
