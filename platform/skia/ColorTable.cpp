#include "skia/ColorTable.h"

#include <ft2build.h>
#include FT_TRIGONOMETRY_H

#include <algorithm>

#include "skia/Numbers.h"

namespace portable {

namespace {

// From the start of the table.
constexpr size_t kGraphList = 14;
constexpr size_t kLayerList = 18;
constexpr size_t kClipList = 22;

// Fractions of a half turn to FreeType's degrees.
FT_Angle angleOf(double halfTurns) {
    return static_cast<FT_Angle>(halfTurns * 180 * 65536);
}

Affine rotation(double halfTurns) {
    const double cosine = fromFixed(FT_Cos(angleOf(halfTurns)));
    const double sine = fromFixed(FT_Sin(angleOf(halfTurns)));
    return {cosine, -sine, 0, sine, cosine, 0};
}

Affine skew(double x, double y) {
    return {1, -fromFixed(FT_Tan(angleOf(x))), 0, fromFixed(FT_Tan(angleOf(y))), 1, 0};
}

}  // namespace

// Reads on from a place. Beyond the end numbers are 0, and the reader has failed.
class ColorTable::Reader {
public:
    Reader(const ColorTable& table, size_t at) : fBytes(table.fBytes), fAt(at) {}

    bool failed() const { return fFailed; }
    uint32_t unsignedNumber(size_t count) {
        if (fAt > fBytes.size() || fBytes.size() - fAt < count) fFailed = true;
        if (fFailed) return 0;
        uint32_t value = 0;
        for (size_t i = 0; i < count; ++i) value = value << 8 | fBytes[fAt++];
        return value;
    }
    uint16_t word() { return static_cast<uint16_t>(unsignedNumber(2)); }
    double length() { return static_cast<int16_t>(word()); }
    double fraction() { return length() / 16384; }
    double fixed() { return static_cast<int32_t>(unsignedNumber(4)) / 65536.0; }
    // Of something that lies so many bytes behind `from`.
    size_t place(size_t from) { return from + unsignedNumber(3); }
    void skip(size_t count) { fAt += std::min(count, fBytes.size()); }

private:
    const std::vector<uint8_t>& fBytes;
    size_t fAt;
    bool fFailed = false;
};

std::optional<size_t> ColorTable::graphOf(uint16_t glyph) const {
    Reader header(*this, 0);
    const bool isNew = header.word() >= 1;
    const size_t list = Reader(*this, kGraphList).unsignedNumber(4);
    if (!isNew || list == 0) return std::nullopt;
    constexpr size_t kRecord = 6;  // glyph, where its graph is
    const size_t count = Reader(*this, list).unsignedNumber(4);
    const size_t index = this->firstRecord(list + 4, count, kRecord, glyph);
    if (index >= count) return std::nullopt;
    Reader record(*this, list + 4 + index * kRecord);
    const bool isThis = record.word() == glyph;
    const size_t offset = record.unsignedNumber(4);
    return isThis && !record.failed() ? std::optional(list + offset) : std::nullopt;
}

std::optional<ColorTable::Box> ColorTable::clipBoxOf(uint16_t glyph) const {
    const size_t list = Reader(*this, kClipList).unsignedNumber(4);
    Reader header(*this, list);
    if (list == 0 || header.unsignedNumber(1) != 1) return std::nullopt;
    constexpr size_t kHeader = 5;
    constexpr size_t kRecord = 7;  // first and last glyph, where the box is
    const size_t count = header.unsignedNumber(4);
    const size_t behind = this->firstRecord(list + kHeader, count, kRecord, uint32_t{glyph} + 1);
    if (behind == 0) return std::nullopt;
    Reader record(*this, list + kHeader + (behind - 1) * kRecord);
    record.skip(2);
    const uint16_t last = record.word();
    Reader box(*this, record.place(list));
    const uint32_t format = box.unsignedNumber(1);
    const Box edges = {box.length(), box.length(), box.length(), box.length()};
    const bool isRead = !record.failed() && !box.failed() && (format == 1 || format == 2);
    return isRead && glyph <= last ? std::optional(edges) : std::nullopt;
}

// Of records in the order of the glyphs that they begin with, the first that is not before the
// glyph; as many as there are when none is.
size_t ColorTable::firstRecord(size_t at, size_t count, size_t size, uint32_t glyph) const {
    size_t first = 0;
    size_t end = std::min(count, fBytes.size() / size);
    while (first < end) {
        const size_t middle = first + (end - first) / 2;
        Reader record(*this, at + middle * size);
        const uint16_t found = record.word();
        if (!record.failed() && found < glyph) {
            first = middle + 1;
        } else {
            end = middle;
        }
    }
    return first;
}

std::optional<size_t> ColorTable::layer(uint32_t index) const {
    const size_t list = Reader(*this, kLayerList).unsignedNumber(4);
    if (list == 0 || index >= Reader(*this, list).unsignedNumber(4)) return std::nullopt;
    Reader reader(*this, list + 4 + size_t{4} * index);
    const size_t offset = reader.unsignedNumber(4);
    return reader.failed() ? std::nullopt : std::optional(list + offset);
}

// Formats come in pairs, of which the second adds what varies at its end.
std::optional<GraphPaint> ColorTable::paint(size_t at) const {
    using Kind = GraphPaint::Kind;
    Reader reader(*this, at);
    const uint32_t format = reader.unsignedNumber(1);
    GraphPaint paint{};
    paint.kind = Kind::kTransform;
    const auto center = [&](bool has) {
        const double x = has ? reader.length() : 0;
        const double y = has ? reader.length() : 0;
        paint.affine = paint.affine.about(x, y);
    };
    const auto lengths = [&](size_t count) {
        for (size_t i = 0; i < count; ++i) paint.numbers[i] = reader.length();
    };
    const auto child = [&] { paint.child = reader.place(at); };
    switch (format) {
        case 1:
            paint.kind = Kind::kLayers;
            paint.layerCount = reader.unsignedNumber(1);
            paint.firstLayer = reader.unsignedNumber(4);
            break;
        case 2:
        case 3:
            paint.kind = Kind::kSolid;
            paint.color.index = reader.word();
            paint.color.alpha = reader.fraction();
            break;
        case 4:
        case 5:
            paint.kind = Kind::kLinear;
            child();
            lengths(6);
            break;
        case 6:
        case 7:
            paint.kind = Kind::kRadial;
            child();
            lengths(6);
            for (const size_t radius : {2, 5}) {  // these have no sign
                if (paint.numbers[radius] < 0) paint.numbers[radius] += 65536;
            }
            break;
        case 8:
        case 9:
            paint.kind = Kind::kSweep;
            child();
            lengths(2);
            // Half turns, kept one less than they are.
            for (const size_t angle : {2, 3}) paint.numbers[angle] = (reader.fraction() + 1) * 180;
            break;
        case 10:
            paint.kind = Kind::kGlyph;
            child();
            paint.glyph = reader.word();
            break;
        case 11:
            paint.kind = Kind::kColorGlyph;
            paint.glyph = reader.word();
            break;
        case 12:
        case 13: {
            child();
            Reader matrix(*this, reader.place(at));
            Affine& a = paint.affine;
            for (double* value : {&a.xx, &a.yx, &a.xy, &a.yy, &a.dx, &a.dy})
                *value = matrix.fixed();
            if (matrix.failed()) return std::nullopt;
            break;
        }
        case 14:
        case 15:
            child();
            paint.affine.dx = reader.length();
            paint.affine.dy = reader.length();
            break;
        case 16:
        case 17:
        case 18:
        case 19:
            child();
            paint.affine.xx = reader.fraction();
            paint.affine.yy = reader.fraction();
            center(format >= 18);
            break;
        case 20:
        case 21:
        case 22:
        case 23:
            child();
            paint.affine.xx = paint.affine.yy = reader.fraction();
            center(format >= 22);
            break;
        case 24:
        case 25:
        case 26:
        case 27:
            child();
            paint.affine = rotation(reader.fraction());
            center(format >= 26);
            break;
        case 28:
        case 29:
        case 30:
        case 31: {
            child();
            const double x = reader.fraction();
            paint.affine = skew(x, reader.fraction());
            center(format >= 30);
            break;
        }
        case 32:
            paint.kind = Kind::kComposite;
            child();
            paint.mode = static_cast<int>(reader.unsignedNumber(1));
            paint.backdrop = reader.place(at);
            break;
        default:
            return std::nullopt;
    }
    paint.variesLine = format % 2 == 1;
    return reader.failed() ? std::nullopt : std::optional(paint);
}

ColorTable::Line ColorTable::line(const GraphPaint& gradient) const {
    Reader reader(*this, gradient.child);
    Line line;
    const uint32_t extend = reader.unsignedNumber(1);
    if (extend == 1) line.extend = Extend::kRepeat;
    if (extend == 2) line.extend = Extend::kReflect;
    for (unsigned count = reader.word(); count > 0; --count) {
        Stop stop{};
        stop.offset = reader.fraction();
        stop.color.index = reader.word();
        stop.color.alpha = reader.fraction();
        if (gradient.variesLine) reader.skip(4);
        if (reader.failed()) break;
        line.stops.push_back(stop);
    }
    return line;
}

}  // namespace portable
