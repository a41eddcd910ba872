// What a colour glyph's graph paints with: fills of one colour or a gradient, and the ways to
// combine two pictures. Doubles take additions, products, quotients and square roots only, angles
// are FreeType's fixed-point ones: the same bytes on every machine.
#pragma once

#include <ft2build.h>
#include FT_COLOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace portable {

// Maps (x, y) to (xx * x + xy * y + dx, yx * x + yy * y + dy).
struct Affine {
    double xx = 1;
    double xy = 0;
    double dx = 0;
    double yx = 0;
    double yy = 1;
    double dy = 0;

    // What maps by `inner` first.
    Affine after(const Affine& inner) const;
    // The same about another fixed point than the origin.
    Affine about(double x, double y) const;
    // Nothing when an area shrinks to none.
    std::optional<Affine> inverse() const;
    std::pair<double, double> map(double x, double y) const {
        return {xx * x + xy * y + dx, yx * x + yy * y + dy};
    }
};

// Premultiplied, 0 to 255.
struct PaintColor {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 0;
};

// What a colour line is beyond its ends.
enum class Extend : uint8_t { kPad, kRepeat, kReflect };

// Colours by place: the stops in order of their offsets, and what lies beyond the first and last.
class ColorLine {
public:
    void add(double offset, const PaintColor& color) {
        fStops.push_back({offset, fStops.size(), color});
    }
    // After the last stop.
    void finish(Extend extend);
    bool isEmpty() const { return fStops.empty(); }
    PaintColor at(double offset) const;

private:
    struct Stop {
        double offset;
        size_t place;  // in the font
        PaintColor color;
    };
    double within(double offset) const;

    std::vector<Stop> fStops;
    Extend fExtend = Extend::kPad;
};

// The gradients of a graph in font units: where on the colour line a point lies. NaN where the
// gradient does not paint.
class Gradient {
public:
    // From a first point to a second, turned to a third: x and y of each.
    static Gradient linear(const std::array<double, 6>& points);
    // x, y and radius of a first circle and of a second.
    static Gradient radial(const std::array<double, 6>& circles);
    // x and y of the centre, first and last angle in degrees.
    static Gradient sweep(const std::array<double, 6>& turn);

    double at(double x, double y) const;

private:
    enum class Kind { kLinear, kRadial, kSweep };
    Gradient(Kind kind, double x, double y) : fKind(kind), fX(x), fY(y) {}
    double radialAt(double x, double y) const;
    double sweepAt(double x, double y) const;

    Kind fKind;
    double fX;
    double fY;
    double fDx = 0;  // along the line, or from centre to centre
    double fDy = 0;
    double fStart = 0;  // radius or degrees
    double fSpan = 0;  // what start lacks to the end; of a linear one the line's length by (dx, dy)
};

// Premultiplied R, G, B, A.
constexpr size_t kColorBytes = 4;

// Puts `pixel` times coverage over the destination.
void coverPixel(const uint8_t pixel[kColorBytes], unsigned coverage, uint8_t out[kColorBytes]);
void coverPixel(const PaintColor& color, unsigned coverage, uint8_t out[kColorBytes]);

// Combines `count` pixels of the source with those of the backdrop, which are replaced. Modes are
// FreeType's FT_COLR_COMPOSITE_ numbers; one that there is not leaves nothing.
void composite(int mode, const uint8_t* source, uint8_t* backdrop, size_t count);

}  // namespace portable
