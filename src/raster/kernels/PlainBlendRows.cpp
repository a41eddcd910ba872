#include "raster/kernels/BlendRows.h"

#include <algorithm>
#include <utility>

namespace GxFontEffect::kernels::plain {

namespace {

// Every pixel of the area becomes pixel(destination, source).
template <typename Destination, typename Source, typename Pixel>
void forEachPixel(const BlendArea& area, Pixel pixel) {
    static_assert(alignof(Destination) == 1 && alignof(Source) == 1);
    const auto rows = static_cast<ptrdiff_t>(area.height);
    for (ptrdiff_t y = 0; y < rows; ++y) {
        auto* d = reinterpret_cast<Destination*>(area.destination + y * area.destinationStride);
        const auto* s = reinterpret_cast<const Source*>(area.source + y * area.sourceStride);
        for (size_t x = 0; x < area.width; ++x) d[x] = pixel(d[x], s[x]);
    }
}

// Pixels as they lie in memory.
struct Bgra {
    uint8_t b, g, r, a;
    operator Rgba() const { return {r, g, b, a}; }
};
struct Argb {
    uint8_t a, r, g, b;
    operator Rgba() const { return {r, g, b, a}; }
};

template <typename Pixel>
void forEachPixel32(const BlendArea& area, SourceOrder order, Pixel pixel) {
    switch (order) {
        case SourceOrder::kRgba:
            return forEachPixel<Rgba, Rgba>(area, pixel);
        case SourceOrder::kBgra:
            return forEachPixel<Rgba, Bgra>(area, pixel);
        case SourceOrder::kArgb:
            return forEachPixel<Rgba, Argb>(area, pixel);
    }
}

}  // namespace

void srcOver8Rows(const BlendArea& area, Rgba color) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) { return srcOver8(d, m, color); });
}

void dstOver8Rows(const BlendArea& area, Rgba color) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) { return dstOver8(d, m, color); });
}

void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) { return dstOverNsa8(d, m, color); });
}

void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) { return dstOverSa8(d, m, color); });
}

void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) {
        return m == 0 ? d : dstOver32(d, fromWord(premultiplied(table[256 - m])));
    });
}

void paintByCoverageRows(const BlendArea& area, const Rgba* byCoverage) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba d, uint8_t m) {
        const Rgba c = byCoverage[m];
        return Rgba{static_cast<uint8_t>(d.r | c.r), static_cast<uint8_t>(d.g | c.g),
                    static_cast<uint8_t>(d.b | c.b), static_cast<uint8_t>(d.a | c.a)};
    });
}

void overwrite8Rows(const BlendArea& area, Rgba color) {
    forEachPixel<Rgba, uint8_t>(area, [=](Rgba, uint8_t m) { return overwrite8(m, color); });
}

void max8Rows(const BlendArea& area) {
    forEachPixel<uint8_t, uint8_t>(area, [](uint8_t d, uint8_t m) { return std::max(d, m); });
}

void srcOver32Rows(const BlendArea& area, SourceOrder order) {
    forEachPixel32(area, order, [](Rgba d, Rgba s) { return srcOver32(d, s); });
}

void dstOver32Rows(const BlendArea& area, SourceOrder order) {
    forEachPixel32(area, order, [](Rgba d, Rgba s) { return dstOver32(d, s); });
}

void swapRedBlueRow(Rgba* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) std::swap(pixels[i].r, pixels[i].b);
}

void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    for (size_t i = 0; i < count; ++i) out[i] = kernels::mixLayers(back[i], out[i], mask[i]);
}

void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    for (size_t i = 0; i < count; ++i) {
        pixels[i] = kernels::fadeAndUnpremultiply(pixels[i], alpha);
    }
}

void fadeIntoWordsRow(Rgba* pixels, size_t count, uint32_t alpha) {
    for (size_t i = 0; i < count; ++i) {
        const Rgba p = kernels::fadeAndUnpremultiply(pixels[i], alpha);
        pixels[i] = {p.b, p.g, p.r, p.a};
    }
}

void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (mask[i] == 0) pixels[i] = {};
    }
}

}  // namespace GxFontEffect::kernels::plain
