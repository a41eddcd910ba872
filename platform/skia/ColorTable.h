// Reads the graphs of a font's COLR table of version 1. FreeType may be built without its reader,
// and then there would be other pictures.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "skia/ColorPaint.h"

namespace portable {

// A colour of the palette, faded.
struct PaletteColor {
    uint16_t index = 0;
    double alpha = 1;
};

// One paint of a graph. Other paints are where they begin in the table.
struct GraphPaint {
    enum class Kind {
        kLayers,
        kSolid,
        kLinear,
        kRadial,
        kSweep,
        kGlyph,
        kColorGlyph,
        kTransform,
        kComposite,
    };
    Kind kind;
    size_t child = 0;     // or the source of a composite, or the line of a gradient
    size_t backdrop = 0;  // of a composite
    int mode = 0;         // of a composite
    uint16_t glyph = 0;
    uint32_t firstLayer = 0;
    unsigned layerCount = 0;
    PaletteColor color;
    std::array<double, 6> numbers = {};  // of a gradient, font units and degrees
    bool variesLine = false;
    Affine affine;
};

// Whatever the bytes are, reading stays inside of them. What a variable font varies is as in its
// default design.
class ColorTable {
public:
    struct Box {
        double left, bottom, right, top;
    };
    struct Stop {
        double offset;
        PaletteColor color;
    };
    struct Line {
        Extend extend = Extend::kPad;
        std::vector<Stop> stops;
    };

    explicit ColorTable(std::vector<uint8_t> bytes) : fBytes(std::move(bytes)) {}

    // Where the glyph's graph begins.
    std::optional<size_t> graphOf(uint16_t glyph) const;
    std::optional<Box> clipBoxOf(uint16_t glyph) const;
    std::optional<size_t> layer(uint32_t index) const;
    std::optional<GraphPaint> paint(size_t at) const;
    // Of a gradient.
    Line line(const GraphPaint& gradient) const;

private:
    class Reader;
    size_t firstRecord(size_t at, size_t count, size_t size, uint32_t glyph) const;

    std::vector<uint8_t> fBytes;
};

}  // namespace portable
