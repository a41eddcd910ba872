#include "support/ColorGraphs.h"

#include <cmath>

namespace gxtest {

namespace {

class Writer {
public:
    Writer& bytes(int count, int64_t value) {
        appendBig(out, count, static_cast<uint32_t>(value));
        return *this;
    }
    Writer& fraction(double value) { return bytes(2, std::lround(value * 16384)); }
    Writer& fixed(double value) { return bytes(4, std::lround(value * 65536)); }
    Writer& append(const Bytes& more) {
        out.insert(out.end(), more.begin(), more.end());
        return *this;
    }
    int64_t size() const { return static_cast<int64_t>(out.size()); }

    Bytes out;
};

// A paint whose child stands behind its own `rest`.
Paint above(int format, const Bytes& rest, const Paint& child) {
    return Writer()
        .bytes(1, format)
        .bytes(3, 4 + static_cast<int64_t>(rest.size()))
        .append(rest)
        .append(child)
        .out;
}

Bytes colorLine(const std::vector<ColorStop>& stops, Extend extend) {
    Writer line;
    line.bytes(1, static_cast<int>(extend)).bytes(2, static_cast<int64_t>(stops.size()));
    for (const ColorStop& stop : stops) {
        line.fraction(stop.offset).bytes(2, stop.palette).fraction(stop.alpha);
    }
    return line.out;
}

Bytes sixWords(const std::array<int, 6>& values) {
    Writer out;
    for (const int value : values) out.bytes(2, value);
    return out.out;
}

}  // namespace

Paint solidPaint(int palette, double alpha) {
    return Writer().bytes(1, 2).bytes(2, palette).fraction(alpha).out;
}

Paint linearPaint(const std::array<int, 6>& points, const std::vector<ColorStop>& stops,
                  Extend extend) {
    return above(4, sixWords(points), colorLine(stops, extend));
}

Paint radialPaint(const std::array<int, 6>& circles, const std::vector<ColorStop>& stops,
                  Extend extend) {
    return above(6, sixWords(circles), colorLine(stops, extend));
}

Paint sweepPaint(int x, int y, double start, double end, const std::vector<ColorStop>& stops,
                 Extend extend) {
    const auto half = [](double degrees) { return degrees / 180 - 1; };
    return above(8, Writer().bytes(2, x).bytes(2, y).fraction(half(start)).fraction(half(end)).out,
                 colorLine(stops, extend));
}

Paint glyphPaint(uint16_t glyph, const Paint& fill) {
    return above(10, Writer().bytes(2, glyph).out, fill);
}

Paint colorGlyphPaint(uint16_t glyph) {
    return Writer().bytes(1, 11).bytes(2, glyph).out;
}

Paint layersPaint(int count, int first) {
    return Writer().bytes(1, 1).bytes(1, count).bytes(4, first).out;
}

Paint transformPaint(const std::array<double, 6>& affine, const Paint& child) {
    Writer matrix;
    for (const double value : affine) matrix.fixed(value);
    const int64_t header = 7;
    return Writer()
        .bytes(1, 12)
        .bytes(3, header + matrix.size())
        .bytes(3, header)
        .append(matrix.out)
        .append(child)
        .out;
}

Paint translatePaint(int dx, int dy, const Paint& child) {
    return above(14, Writer().bytes(2, dx).bytes(2, dy).out, child);
}

Paint scalePaint(double x, double y, int centerX, int centerY, const Paint& child) {
    return above(18, Writer().fraction(x).fraction(y).bytes(2, centerX).bytes(2, centerY).out,
                 child);
}

Paint rotatePaint(double halfTurns, int centerX, int centerY, const Paint& child) {
    return above(26, Writer().fraction(halfTurns).bytes(2, centerX).bytes(2, centerY).out, child);
}

Paint skewPaint(double x, double y, const Paint& child) {
    return above(28, Writer().fraction(x).fraction(y).out, child);
}

Paint compositePaint(int mode, const Paint& source, const Paint& backdrop) {
    const int64_t header = 8;
    return Writer()
        .bytes(1, 32)
        .bytes(3, header)
        .bytes(1, mode)
        .bytes(3, header + static_cast<int64_t>(source.size()))
        .append(source)
        .append(backdrop)
        .out;
}

void addColorGraphs(SyntheticFont& font, const std::vector<GraphGlyph>& glyphs,
                    const std::vector<uint32_t>& palette, const std::vector<Paint>& layers) {
    Writer list;
    Writer paints;
    const auto listSize = static_cast<int64_t>(4 + 6 * glyphs.size());
    list.bytes(4, static_cast<int64_t>(glyphs.size()));
    Writer clips;
    Writer boxes;
    int64_t clipCount = 0;
    for (const GraphGlyph& glyph : glyphs) clipCount += glyph.clip.empty() ? 0 : 1;
    clips.bytes(1, 1).bytes(4, clipCount);
    const int64_t clipsSize = 5 + 7 * clipCount;
    for (const GraphGlyph& glyph : glyphs) {
        list.bytes(2, glyph.glyph).bytes(4, listSize + paints.size());
        paints.append(glyph.paint);
        for (const Box& box : glyph.clip) {
            clips.bytes(2, glyph.glyph).bytes(2, glyph.glyph).bytes(3, clipsSize + boxes.size());
            boxes.bytes(1, 1).bytes(2, box.left).bytes(2, box.bottom);
            boxes.bytes(2, box.right).bytes(2, box.top);
        }
    }
    list.append(paints.out);
    clips.append(boxes.out);
    Writer layerList;
    Writer layerPaints;
    layerList.bytes(4, static_cast<int64_t>(layers.size()));
    for (const Paint& layer : layers) {
        layerList.bytes(4, static_cast<int64_t>(4 + 4 * layers.size()) + layerPaints.size());
        layerPaints.append(layer);
    }
    layerList.append(layerPaints.out);

    constexpr int64_t kHeader = 34;
    Writer table;
    table.bytes(2, 1).bytes(2, 0).bytes(4, 0).bytes(4, 0).bytes(2, 0);
    table.bytes(4, kHeader).bytes(4, kHeader + list.size());
    table.bytes(4, clipCount == 0 ? 0 : kHeader + list.size() + layerList.size());
    table.bytes(4, 0).bytes(4, 0);
    table.append(list.out).append(layerList.out).append(clips.out);
    font.tables["COLR"] = table.out;

    Writer colors;
    const auto count = static_cast<int64_t>(palette.size());
    colors.bytes(2, 0).bytes(2, count).bytes(2, 1).bytes(2, count).bytes(4, 14).bytes(2, 0);
    for (const uint32_t color : palette) {
        for (const int shift : {0, 8, 16, 24}) colors.bytes(1, color >> shift & 0xFF);
    }
    font.tables["CPAL"] = colors.out;
}

}  // namespace gxtest
