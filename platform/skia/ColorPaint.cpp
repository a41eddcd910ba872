#include "skia/ColorPaint.h"

#include FT_TRIGONOMETRY_H

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "skia/Numbers.h"

namespace portable {

namespace {

constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();

PaintColor mix(const PaintColor& a, const PaintColor& b, double part) {
    const auto between = [part](double x, double y) { return x + (y - x) * part; };
    return {between(a.r, b.r), between(a.g, b.g), between(a.b, b.b), between(a.a, b.a)};
}

// 0 to 255, to the nearest, halves upwards; what is no number gives 0.
uint8_t nearestByte(double v) {
    const double half = (v > 0 ? std::min(v, 255.0) : 0) + 0.5;
    return static_cast<uint8_t>(half);
}

// Counter-clockwise from the x axis, degrees from 0 to 360.
double degreesOf(double x, double y) {
    const double largest = std::max(std::fabs(x), std::fabs(y));
    if (!(largest > 0)) return 0;
    // Whole numbers in a range in which FreeType's rotation is at its most exact.
    constexpr double kRange = 1 << 28;
    const auto fixed = [&](double v) {
        return static_cast<FT_Fixed>(std::floor(v / largest * kRange));
    };
    const double degrees = fromFixed(FT_Atan2(fixed(x), fixed(y)));
    return degrees < 0 ? degrees + 360 : degrees;
}

}  // namespace

Affine Affine::after(const Affine& inner) const {
    return {xx * inner.xx + xy * inner.yx,      xx * inner.xy + xy * inner.yy,
            xx * inner.dx + xy * inner.dy + dx, yx * inner.xx + yy * inner.yx,
            yx * inner.xy + yy * inner.yy,      yx * inner.dx + yy * inner.dy + dy};
}

Affine Affine::about(double x, double y) const {
    const auto [mappedX, mappedY] = this->map(x, y);
    Affine moved = *this;
    moved.dx += x - mappedX;
    moved.dy += y - mappedY;
    return moved;
}

std::optional<Affine> Affine::inverse() const {
    const double area = xx * yy - xy * yx;
    if (!(std::fabs(area) > 0) || !std::isfinite(area)) return std::nullopt;
    Affine back = {yy / area, -xy / area, 0, -yx / area, xx / area, 0};
    back.dx = -(back.xx * dx + back.xy * dy);
    back.dy = -(back.yx * dx + back.yy * dy);
    return back;
}

void ColorLine::finish(Extend extend) {
    fExtend = extend;
    // Those at one offset stay in their order.
    std::sort(fStops.begin(), fStops.end(), [](const Stop& a, const Stop& b) {
        return a.offset != b.offset ? a.offset < b.offset : a.place < b.place;
    });
}

double ColorLine::within(double offset) const {
    const double first = fStops.front().offset;
    const double length = fStops.back().offset - first;
    if (fExtend == Extend::kPad || !(length > 0)) return offset;
    double turns = (offset - first) / length;
    if (fExtend == Extend::kReflect) {
        turns -= 2 * std::floor(turns / 2);
        turns = turns > 1 ? 2 - turns : turns;
    } else {
        turns -= std::floor(turns);
    }
    return first + turns * length;
}

PaintColor ColorLine::at(double offset) const {
    offset = this->within(offset);
    const auto after = std::upper_bound(fStops.begin(), fStops.end(), offset,
                                        [](double o, const Stop& stop) { return o < stop.offset; });
    if (after == fStops.begin()) return after->color;
    const Stop& before = *std::prev(after);
    if (after == fStops.end()) return before.color;
    return mix(before.color, after->color,
               (offset - before.offset) / (after->offset - before.offset));
}

// The line runs at a right angle to the one from the first point to the third.
Gradient Gradient::linear(const std::array<double, 6>& p) {
    Gradient g(Kind::kLinear, p[0], p[1]);
    g.fDx = p[5] - p[1];
    g.fDy = -(p[4] - p[0]);
    g.fSpan = (p[2] - p[0]) * g.fDx + (p[3] - p[1]) * g.fDy;
    return g;
}

Gradient Gradient::radial(const std::array<double, 6>& c) {
    Gradient g(Kind::kRadial, c[0], c[1]);
    g.fDx = c[3] - c[0];
    g.fDy = c[4] - c[1];
    g.fStart = c[2];
    g.fSpan = c[5] - c[2];
    return g;
}

Gradient Gradient::sweep(const std::array<double, 6>& t) {
    Gradient g(Kind::kSweep, t[0], t[1]);
    g.fStart = t[2];
    g.fSpan = t[3] - t[2];
    return g;
}

double Gradient::at(double x, double y) const {
    switch (fKind) {
        case Kind::kLinear:
            return fSpan != 0 ? ((x - fX) * fDx + (y - fY) * fDy) / fSpan : kNowhere;
        case Kind::kRadial:
            return this->radialAt(x - fX, y - fY);
        case Kind::kSweep:
            return this->sweepAt(x - fX, y - fY);
    }
    return kNowhere;
}

// Of the circles between the two, and beyond, on which the point lies, the last whose radius is not
// negative: |p - t * d| = start + t * span.
double Gradient::radialAt(double x, double y) const {
    const double a = fDx * fDx + fDy * fDy - fSpan * fSpan;
    const double half = x * fDx + y * fDy + fStart * fSpan;
    const double c = x * x + y * y - fStart * fStart;
    const auto exists = [this](double t) { return fStart + t * fSpan >= 0; };
    if (a == 0) {
        const double t = half != 0 ? c / (2 * half) : kNowhere;
        return exists(t) ? t : kNowhere;
    }
    const double inside = half * half - a * c;
    if (!(inside >= 0)) return kNowhere;
    const double root = std::sqrt(inside);
    const double t0 = (half - root) / a;
    const double t1 = (half + root) / a;
    const double last = std::max(t0, t1);
    if (exists(last)) return last;
    const double other = std::min(t0, t1);
    return exists(other) ? other : kNowhere;
}

double Gradient::sweepAt(double x, double y) const {
    const double degrees = degreesOf(x, y);
    if (fSpan != 0) return (degrees - fStart) / fSpan;
    return degrees < fStart ? -1 : 1;
}

void coverPixel(const uint8_t pixel[kColorBytes], unsigned coverage, uint8_t out[kColorBytes]) {
    const unsigned alpha = div255(pixel[3] * coverage);
    for (size_t c = 0; c < kColorBytes; ++c) {
        out[c] = static_cast<uint8_t>(div255(pixel[c] * coverage) + div255(out[c] * (255 - alpha)));
    }
}

void coverPixel(const PaintColor& color, unsigned coverage, uint8_t out[kColorBytes]) {
    const uint8_t pixel[] = {nearestByte(color.r), nearestByte(color.g), nearestByte(color.b),
                             nearestByte(color.a)};
    coverPixel(pixel, coverage, out);
}

namespace {

using Channels = std::array<double, 3>;

// Straight colour and alpha, 0 to 1.
struct Straight {
    explicit Straight(const uint8_t* pixel) : alpha(pixel[3] / 255.0) {
        for (size_t c = 0; c < 3 && pixel[3] != 0; ++c) {
            color[c] = std::min(pixel[c] / static_cast<double>(pixel[3]), 1.0);
        }
    }

    Channels color = {};
    double alpha;
};

double softLight(double s, double d) {
    if (s <= 0.5) return d - (1 - 2 * s) * d * (1 - d);
    const double bent = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
    return d + (2 * s - 1) * (bent - d);
}

double hardLight(double s, double d) {
    return s <= 0.5 ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d);
}

// Of one channel, s over d.
double separable(int mode, double s, double d) {
    switch (mode) {
        case FT_COLR_COMPOSITE_SCREEN:
            return s + d - s * d;
        case FT_COLR_COMPOSITE_OVERLAY:
            return hardLight(d, s);
        case FT_COLR_COMPOSITE_DARKEN:
            return std::min(s, d);
        case FT_COLR_COMPOSITE_LIGHTEN:
            return std::max(s, d);
        case FT_COLR_COMPOSITE_COLOR_DODGE:
            return d <= 0 ? 0 : s >= 1 ? 1 : std::min(1.0, d / (1 - s));
        case FT_COLR_COMPOSITE_COLOR_BURN:
            return d >= 1 ? 1 : s <= 0 ? 0 : 1 - std::min(1.0, (1 - d) / s);
        case FT_COLR_COMPOSITE_HARD_LIGHT:
            return hardLight(s, d);
        case FT_COLR_COMPOSITE_SOFT_LIGHT:
            return softLight(s, d);
        case FT_COLR_COMPOSITE_DIFFERENCE:
            return std::fabs(s - d);
        case FT_COLR_COMPOSITE_EXCLUSION:
            return s + d - 2 * s * d;
        case FT_COLR_COMPOSITE_MULTIPLY:
            return s * d;
        default:
            return s;
    }
}

double luminosity(const Channels& c) {
    return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

double saturation(const Channels& c) {
    const auto [least, most] = std::minmax_element(c.begin(), c.end());
    return *most - *least;
}

Channels withLuminosity(Channels c, double wanted) {
    const double difference = wanted - luminosity(c);
    for (double& v : c) v += difference;
    const double grey = luminosity(c);
    const double least = *std::min_element(c.begin(), c.end());
    const double most = *std::max_element(c.begin(), c.end());
    for (double& v : c) {
        if (least < 0 && grey > least) v = grey + (v - grey) * grey / (grey - least);
        if (most > 1 && most > grey) v = grey + (v - grey) * (1 - grey) / (most - grey);
    }
    return c;
}

Channels withSaturation(Channels c, double wanted) {
    const double least = *std::min_element(c.begin(), c.end());
    const double range = saturation(c);
    for (double& v : c) v = range > 0 ? (v - least) * wanted / range : 0;
    return c;
}

Channels blended(int mode, const Channels& s, const Channels& d) {
    switch (mode) {
        case FT_COLR_COMPOSITE_HSL_HUE:
            return withLuminosity(withSaturation(s, saturation(d)), luminosity(d));
        case FT_COLR_COMPOSITE_HSL_SATURATION:
            return withLuminosity(withSaturation(d, saturation(s)), luminosity(d));
        case FT_COLR_COMPOSITE_HSL_COLOR:
            return withLuminosity(s, luminosity(d));
        case FT_COLR_COMPOSITE_HSL_LUMINOSITY:
            return withLuminosity(d, luminosity(s));
        default:
            return {separable(mode, s[0], d[0]), separable(mode, s[1], d[1]),
                    separable(mode, s[2], d[2])};
    }
}

void blendPixel(int mode, const uint8_t* source, uint8_t* backdrop) {
    const Straight s(source);
    const Straight d(backdrop);
    const Channels both = blended(mode, s.color, d.color);
    const double alpha = s.alpha + d.alpha - s.alpha * d.alpha;
    backdrop[3] = nearestByte(alpha * 255);
    for (size_t c = 0; c < 3; ++c) {
        const double v = s.color[c] * s.alpha * (1 - d.alpha) +
                         d.color[c] * d.alpha * (1 - s.alpha) + both[c] * s.alpha * d.alpha;
        backdrop[c] = nearestByte(std::min(v, alpha) * 255);
    }
}

// How much of source and backdrop is left, of 255 each; nothing for modes that blend.
struct Parts {
    unsigned source;
    unsigned backdrop;
};

std::optional<Parts> partsOf(int mode, unsigned sourceAlpha, unsigned alpha) {
    const unsigned noSource = 255 - sourceAlpha;
    const unsigned noBackdrop = 255 - alpha;
    switch (mode) {
        case FT_COLR_COMPOSITE_SRC:
            return Parts{255, 0};
        case FT_COLR_COMPOSITE_DEST:
            return Parts{0, 255};
        case FT_COLR_COMPOSITE_SRC_OVER:
            return Parts{255, noSource};
        case FT_COLR_COMPOSITE_DEST_OVER:
            return Parts{noBackdrop, 255};
        case FT_COLR_COMPOSITE_SRC_IN:
            return Parts{alpha, 0};
        case FT_COLR_COMPOSITE_DEST_IN:
            return Parts{0, sourceAlpha};
        case FT_COLR_COMPOSITE_SRC_OUT:
            return Parts{noBackdrop, 0};
        case FT_COLR_COMPOSITE_DEST_OUT:
            return Parts{0, noSource};
        case FT_COLR_COMPOSITE_SRC_ATOP:
            return Parts{alpha, noSource};
        case FT_COLR_COMPOSITE_DEST_ATOP:
            return Parts{noBackdrop, sourceAlpha};
        case FT_COLR_COMPOSITE_XOR:
            return Parts{noBackdrop, noSource};
        case FT_COLR_COMPOSITE_PLUS:
            return Parts{255, 255};
        default:
            return std::nullopt;
    }
}

}  // namespace

void composite(int mode, const uint8_t* source, uint8_t* backdrop, size_t count) {
    if (mode <= FT_COLR_COMPOSITE_CLEAR || mode >= FT_COLR_COMPOSITE_MAX) {
        std::fill_n(backdrop, count * kColorBytes, uint8_t{0});
        return;
    }
    for (size_t i = 0; i < count; ++i, source += kColorBytes, backdrop += kColorBytes) {
        const auto parts = partsOf(mode, source[3], backdrop[3]);
        if (!parts) {
            blendPixel(mode, source, backdrop);
            continue;
        }
        for (size_t c = 0; c < kColorBytes; ++c) {
            const unsigned sum =
                div255(source[c] * parts->source) + div255(backdrop[c] * parts->backdrop);
            backdrop[c] = static_cast<uint8_t>(std::min(sum, 255u));
        }
    }
}

}  // namespace portable
