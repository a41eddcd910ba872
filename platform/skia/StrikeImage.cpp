#include "skia/StrikeImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "skia/GlyphOutline.h"
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

// B, G, R, A to R, G, B, A, no colour above its alpha: words are turned first, then bytes compared.
void turnColors(uint8_t* pixels, size_t count) {
    constexpr size_t kStretch = 64;
    for (size_t first = 0; first < count; first += kStretch) {
        const size_t part = std::min(count - first, kStretch);
        uint32_t colors[kStretch];
        uint32_t alphas[kStretch];
        uint8_t bytes[2][4 * kStretch];
        std::memcpy(colors, pixels + 4 * first, 4 * part);
        for (size_t i = 0; i < part; ++i) {
            const uint32_t color = colors[i];
            const uint32_t twice = color >> 24 | (color >> 24) << 8;
            colors[i] = (color & 0xFF00FF00) | (color >> 16 & 0xFF) | (color & 0xFF) << 16;
            alphas[i] = twice | twice << 16;
        }
        std::memcpy(bytes[0], colors, 4 * part);
        std::memcpy(bytes[1], alphas, 4 * part);
        for (size_t i = 0; i < 4 * part; ++i) {
            pixels[4 * first + i] = std::min(bytes[0][i], bytes[1][i]);
        }
    }
}

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

// Of even sides, two channels of a word at a time.
Picture halvedColors(const Picture& from) {
    Picture to;
    to.width = from.width / 2;
    to.height = from.height / 2;
    to.channels = 4;
    to.pixels.resize(static_cast<size_t>(to.width) * to.height * to.channels);
    for (int y = 0; y < to.height; ++y) {
        const uint8_t* upper = from.at(0, 2 * y);
        const uint8_t* lower = from.at(0, 2 * y + 1);
        uint8_t* out = to.pixels.data() + static_cast<size_t>(y) * to.width * to.channels;
        for (int x = 0; x < to.width; ++x, upper += 8, lower += 8, out += 4) {
            uint64_t rows[2];
            std::memcpy(&rows[0], upper, sizeof(uint64_t));
            std::memcpy(&rows[1], lower, sizeof(uint64_t));
            constexpr uint64_t kEven = 0x00FF00FF00FF00FF;
            const uint64_t even = (rows[0] & kEven) + (rows[1] & kEven);
            const uint64_t odd = (rows[0] >> 8 & kEven) + (rows[1] >> 8 & kEven);
            const auto mean = [](uint64_t sums) {
                return static_cast<uint32_t>(sums + (sums >> 32)) >> 2 & 0x00FF00FF;
            };
            const uint32_t pixel = mean(even) | mean(odd) << 8;
            std::memcpy(out, &pixel, sizeof(pixel));
        }
    }
    return to;
}

Picture halved(const Picture& from) {
    if (from.channels == 4 && from.width % 2 == 0 && from.height % 2 == 0) {
        return halvedColors(from);
    }
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

// How the pixels of a row are made of those of a picture's row. For each channel of each the part
// of the first pixel and of the second lie apart, so that a row is one loop over numbers in turn.
template <size_t kFirst, size_t kChannels>
class RowSampler {
public:
    void clear() {
        places_.clear();
        parts_[0].clear();
        parts_[1].clear();
    }
    bool isEmpty() const { return places_.empty(); }
    void add(const Between& place) {
        places_.push_back(place);
        for (size_t c = 0; c < kChannels; ++c) {
            parts_[0].push_back(1 - place.part);
            parts_[1].push_back(place.part);
        }
    }
    size_t count() const { return parts_[0].size(); }

    // Bilinear: first along a row, mixRows() then between two.
    void sample(const Picture& picture, int y, float* out) {
        for (std::vector<uint8_t>& bytes : bytes_) bytes.resize(count());
        const uint8_t* row = picture.at(0, y) + kFirst;
        for (size_t i = 0; i < places_.size(); ++i) {
            const auto at = [&](int x) { return row + static_cast<size_t>(x) * picture.channels; };
            std::memcpy(&bytes_[0][i * kChannels], at(places_[i].first), kChannels);
            std::memcpy(&bytes_[1][i * kChannels], at(places_[i].second), kChannels);
        }
        mix(bytes_[0].data(), bytes_[1].data(), parts_[0].data(), parts_[1].data(), count(), out);
    }

private:
    static void mix(const uint8_t* first, const uint8_t* second, const float* firstPart,
                    const float* secondPart, size_t count, float* out) {
        for (size_t i = 0; i < count; ++i) {
            out[i] = static_cast<float>(first[i]) * firstPart[i] +
                     static_cast<float>(second[i]) * secondPart[i];
        }
    }

    std::vector<Between> places_;
    std::vector<float> parts_[2];
    std::vector<uint8_t> bytes_[2];
};

void mixRows(const float* top, const float* bottom, float part, size_t count, uint8_t* out) {
    for (size_t i = 0; i < count; ++i) {
        // Between 0 and 255: cutting what is half more rounds to the nearest.
        const float half = top[i] * (1 - part) + bottom[i] * part + 0.5f;
        out[i] = static_cast<uint8_t>(static_cast<int>(half));
    }
}

// Samples of two rows, kept for the rows of pixels that lie between the same.
class SampledRows {
public:
    // Those of a picture's row, made by sample(out).
    template <typename Sample>
    const float* row(int y, size_t count, Sample sample) {
        for (const Row& known : rows_) {
            if (known.y == y) return known.samples.data();
        }
        next_ = 1 - next_;
        rows_[next_].y = y;
        rows_[next_].samples.resize(count);
        sample(rows_[next_].samples.data());
        return rows_[next_].samples.data();
    }

private:
    struct Row {
        int y = -1;
        std::vector<float> samples;
    };
    Row rows_[2];
    size_t next_ = 0;
};

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
        std::memcpy(out, row, size_t{4} * bitmap.width);
        out += size_t{4} * bitmap.width;
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
    if (!this->isColored()) return;
    this->draw<0, 4>(matrix, placement, window, out);
    turnColors(out, pixelCount(window));
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
    RowSampler<kFirst, kChannels> across;  // of the pixels from `begin` on; all rows have the same
    int begin = 0;                         // unless the picture leans
    SampledRows sampled;
    for (int y = window.fTop; y < window.fBottom; ++y, out += kChannels * width) {
        const double sy = (y + 0.5 - p.dy) / yy;
        const double v = sy - fTop;
        if (!(v >= 0 && v < fPicture.height)) continue;
        if (xy != 0 || across.isEmpty()) {
            const double zero = p.dx + xy * sy;
            const int first = floorToInt(std::min(edges[0], edges[1]) + zero);
            const int last = ceilToInt(std::max(edges[0], edges[1]) + zero);
            const int end = std::min(last + 1, window.fRight);
            across.clear();
            for (int x = std::max(first - 1, window.fLeft); x < end; ++x) {
                const double u = (x + 0.5 - zero) / xx - fLeft;
                if (!(u >= 0 && u < fPicture.width)) continue;
                if (across.isEmpty()) begin = x;
                across.add(Between(u * columns, level->width));
            }
            sampled = SampledRows();
        }
        if (across.isEmpty()) continue;
        const Between down(v * rows, level->height);
        const size_t count = across.count();
        const auto rowAt = [&](int row) {
            return sampled.row(row, count,
                               [&](float* samples) { across.sample(*level, row, samples); });
        };
        const float* top = rowAt(down.first);
        const float* bottom = rowAt(down.second);
        mixRows(top, bottom, down.part, count, out + kChannels * (begin - window.fLeft));
    }
}

}  // namespace portable
