#include "skia/ColorGraph.h"

#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <new>
#include <type_traits>

#include "skia/GlyphEffort.h"
#include "skia/GlyphOutline.h"
#include "skia/Numbers.h"

namespace portable {

namespace {

constexpr SkIRect kEverywhere = {-kMaxCoordinate, -kMaxCoordinate, kMaxCoordinate, kMaxCoordinate};

SkIRect boxOf(const FT_Outline& outline) {
    FT_BBox box;
    return outlineBox(outline, &box) ? placeBox(box, {}) : SkIRect::MakeEmpty();
}

// Font units to 26.6, y upwards, as outlines are filled.
void mapPoints(const Affine& matrix, FT_Outline& outline) {
    for (FT_Vector* p = outline.points; p < outline.points + outline.n_points; ++p) {
        const auto [x, y] = matrix.map(static_cast<double>(p->x), static_cast<double>(p->y));
        *p = {floorToInt(x * 64 + 0.5), floorToInt(-y * 64 + 0.5)};
    }
}

void unite(SkIRect* all, const SkIRect& box) {
    if (all->isEmpty()) {
        *all = box;
        return;
    }
    *all =
        SkIRect::MakeLTRB(std::min(all->fLeft, box.fLeft), std::min(all->fTop, box.fTop),
                          std::max(all->fRight, box.fRight), std::max(all->fBottom, box.fBottom));
}

// A box of font units as an outline.
class BoxOutline {
public:
    explicit BoxOutline(const ColorTable::Box& box) {
        const auto point = [](double x, double y) {
            return FT_Vector{static_cast<FT_Pos>(x), static_cast<FT_Pos>(y)};
        };
        fPoints[0] = point(box.left, box.bottom);
        fPoints[1] = point(box.left, box.top);
        fPoints[2] = point(box.right, box.top);
        fPoints[3] = point(box.right, box.bottom);
        fOutline.n_points = 4;
        fOutline.n_contours = 1;
        fOutline.points = fPoints;
        fOutline.tags = fTags;
        fOutline.contours = &fEnd;
    }
    BoxOutline(const BoxOutline&) = delete;
    BoxOutline& operator=(const BoxOutline&) = delete;

    FT_Outline& get() { return fOutline; }

private:
    using Tag = std::remove_pointer_t<decltype(FT_Outline::tags)>;
    using End = std::remove_pointer_t<decltype(FT_Outline::contours)>;

    FT_Outline fOutline = {};
    FT_Vector fPoints[4];
    Tag fTags[4] = {FT_CURVE_TAG_ON, FT_CURVE_TAG_ON, FT_CURVE_TAG_ON, FT_CURVE_TAG_ON};
    End fEnd = 3;
};

}  // namespace

ColorGraph::ColorGraph(FT_Face face, const GlyphData& data, const ColorTable& table, bool overlaps,
                       SkColor foreground)
    : fFace(face), fData(data), fTable(table), fOverlaps(overlaps), fForeground(foreground) {
    FT_Palette_Data info = {};
    if (FT_Palette_Select(face, 0, &fPalette) == 0 && FT_Palette_Data_Get(face, &info) == 0) {
        fPaletteSize = fPalette ? info.num_palette_entries : 0;
    }
}

void ColorGraph::start() {
    fPath.clear();
    fPaints = 0;
    fPictures = 0;
    fPixels = 0;
    fPoints = 0;
}

// Font units have y upwards.
Affine ColorGraph::rootMatrix(const GlyphMatrix& m, const GlyphPlacement& p) const {
    const double x = fromFixed(fFace->size->metrics.x_scale) / 64 * p.scale;
    const double y = fromFixed(fFace->size->metrics.y_scale) / 64 * p.scale;
    return {m.xx * x, -m.xy * y, p.dx, 0, -m.yy * y, p.dy};
}

SkIRect ColorGraph::bounds(uint16_t glyph, const GlyphMatrix& matrix,
                           const GlyphPlacement& placement) {
    this->start();
    const Affine root = this->rootMatrix(matrix, placement);
    if (const auto clip = fTable.clipBoxOf(glyph)) {
        BoxOutline box(*clip);
        mapPoints(root, box.get());
        return boxOf(box.get());
    }
    fShapes = SkIRect::MakeEmpty();
    const Clip everywhere = {kEverywhere, {}};
    this->paintGlyphGraph(glyph, {root, &everywhere, nullptr});
    return fShapes;
}

void ColorGraph::render(uint16_t glyph, const GlyphMatrix& matrix, const GlyphPlacement& placement,
                        const SkIRect& window, uint8_t* out) {
    this->start();
    const Picture picture = {window, out};
    const Clip all = {window, {}};
    this->paintGlyphGraph(glyph, {this->rootMatrix(matrix, placement), &all, &picture});
}

void ColorGraph::paintGlyphGraph(uint16_t glyph, const Target& target) {
    if (const auto root = fTable.graphOf(glyph)) this->paintAt(*root, target);
}

void ColorGraph::paintAt(size_t place, const Target& target) {
    if (fPath.size() >= kMaxDepth || ++fPaints > kMaxPaints) return;
    if (std::find(fPath.begin(), fPath.end(), place) != fPath.end()) return;
    const std::optional<GraphPaint> paint = fTable.paint(place);
    if (!paint) return;
    fPath.push_back(place);
    this->paintContent(*paint, target);
    fPath.pop_back();
}

void ColorGraph::paintContent(const GraphPaint& paint, const Target& target) {
    switch (paint.kind) {
        case GraphPaint::Kind::kLayers:
            return this->paintLayers(paint, target);
        case GraphPaint::Kind::kSolid: {
            const PaintColor color = this->colorOf(paint.color);
            return this->fill(target, [&](double, double) { return color; });
        }
        case GraphPaint::Kind::kLinear:
            return this->fillGradient(Gradient::linear(paint.numbers), paint, target);
        case GraphPaint::Kind::kRadial:
            return this->fillGradient(Gradient::radial(paint.numbers), paint, target);
        case GraphPaint::Kind::kSweep:
            return this->fillGradient(Gradient::sweep(paint.numbers), paint, target);
        case GraphPaint::Kind::kGlyph:
            return this->paintShape(paint, target);
        case GraphPaint::Kind::kColorGlyph:
            return this->paintColorGlyph(paint.glyph, target);
        case GraphPaint::Kind::kTransform:
            return this->paintAt(paint.child, target.with(paint.affine));
        case GraphPaint::Kind::kComposite:
            return this->paintComposite(paint, target);
    }
}

void ColorGraph::paintLayers(const GraphPaint& paint, const Target& target) {
    for (uint32_t i = 0; i < paint.layerCount && fPaints <= kMaxPaints; ++i) {
        const auto layer = fTable.layer(paint.firstLayer + i);
        if (!layer) return;
        this->paintAt(*layer, target);
    }
}

void ColorGraph::paintShape(const GraphPaint& paint, const Target& target) {
    if (!this->loadShape(paint.glyph)) return;
    FT_Outline& outline = fFace->glyph->outline;
    const int fill = outline.flags;
    outline.flags = fOverlaps ? fill | FT_OUTLINE_OVERLAP : fill & ~FT_OUTLINE_OVERLAP;
    Clip clip;
    this->fillShape(outline, target, &clip);
    if (clip.box.isEmpty()) return;
    this->paintAt(paint.child, {target.matrix, &clip, target.picture});
}

// The clip becomes what the shape leaves of the target's.
void ColorGraph::fillShape(FT_Outline& outline, const Target& target, Clip* clip) {
    mapPoints(target.matrix, outline);
    clip->box = boxOf(outline);
    const bool isSeen =
        clip->box.intersect(target.clip->box) && (!target.picture || this->takePixels(clip->box));
    if (!isSeen) clip->box = SkIRect::MakeEmpty();
    if (!isSeen || !target.picture) return;
    clip->coverage.resize(pixelCount(clip->box));
    fillOutline(fFace->glyph->library, outline, MaskKind::kGrey, {}, clip->box,
                clip->coverage.data());
    const Clip& outer = *target.clip;
    if (outer.coverage.empty()) return;
    const ptrdiff_t stride = outer.box.fRight - outer.box.fLeft;
    uint8_t* inner = clip->coverage.data();
    for (int y = clip->box.fTop; y < clip->box.fBottom; ++y) {
        const uint8_t* row = outer.coverage.data() + (y - outer.box.fTop) * stride;
        for (int x = clip->box.fLeft; x < clip->box.fRight; ++x, ++inner) {
            *inner = static_cast<uint8_t>(div255(*inner * row[x - outer.box.fLeft]));
        }
    }
}

void ColorGraph::paintColorGlyph(uint16_t glyph, const Target& target) {
    const auto edges = fTable.clipBoxOf(glyph);
    if (!edges) {
        this->paintGlyphGraph(glyph, target);
        return;
    }
    BoxOutline box(*edges);
    Clip clip;
    this->fillShape(box.get(), target, &clip);
    if (clip.box.isEmpty()) return;
    this->paintGlyphGraph(glyph, {target.matrix, &clip, target.picture});
}

void ColorGraph::paintComposite(const GraphPaint& paint, const Target& target) {
    if (!target.picture) {
        this->paintAt(paint.backdrop, target);
        this->paintAt(paint.child, target);
        return;
    }
    const SkIRect& box = target.clip->box;
    if (fPictures + 2 > kMaxPictures || !this->takePixels(box)) return;
    fPictures += 2;
    const size_t count = pixelCount(box);
    const Clip all = {box, {}};
    std::vector<uint8_t> backdrop(count * kColorBytes);
    std::vector<uint8_t> source(count * kColorBytes);
    const Picture below = {box, backdrop.data()};
    const Picture above = {box, source.data()};
    this->paintAt(paint.backdrop, {target.matrix, &all, &below});
    this->paintAt(paint.child, {target.matrix, &all, &above});
    composite(paint.mode, source.data(), backdrop.data(), count);
    fPictures -= 2;

    const Clip& clip = *target.clip;
    const Picture& onto = *target.picture;
    const ptrdiff_t stride = onto.box.fRight - onto.box.fLeft;
    for (size_t i = 0; i < count; ++i) {
        const auto width = static_cast<size_t>(box.fRight - box.fLeft);
        const auto x = static_cast<ptrdiff_t>(i % width) + box.fLeft - onto.box.fLeft;
        const auto y = static_cast<ptrdiff_t>(i / width) + box.fTop - onto.box.fTop;
        const unsigned coverage = clip.coverage.empty() ? 255 : clip.coverage[i];
        coverPixel(backdrop.data() + i * kColorBytes, coverage,
                   onto.pixels + (y * stride + x) * static_cast<ptrdiff_t>(kColorBytes));
    }
}

void ColorGraph::fillGradient(const Gradient& gradient, const GraphPaint& paint,
                              const Target& target) {
    const ColorLine line = target.picture ? this->lineOf(paint) : ColorLine();
    if (target.picture && line.isEmpty()) return;
    const std::optional<Affine> back = target.matrix.inverse();
    if (!back) return;
    this->fill(target, [&](double x, double y) {
        const auto [u, v] = back->map(x, y);
        const double offset = gradient.at(u, v);
        return offset == offset ? line.at(offset) : PaintColor();
    });
}

// Fills the clip with the colours of pixel centres.
template <typename ColorAt>
void ColorGraph::fill(const Target& target, ColorAt colorAt) {
    const SkIRect& box = target.clip->box;
    if (!target.picture) {
        const bool isBounded = box.fLeft > -kMaxCoordinate && box.fRight < kMaxCoordinate;
        if (isBounded && !box.isEmpty()) unite(&fShapes, box);
        return;
    }
    if (!this->takePixels(box)) return;
    const Picture& onto = *target.picture;
    const ptrdiff_t stride = onto.box.fRight - onto.box.fLeft;
    const uint8_t* coverage = target.clip->coverage.data();
    const bool all = target.clip->coverage.empty();
    for (int y = box.fTop; y < box.fBottom; ++y) {
        uint8_t* out = onto.pixels + ((y - onto.box.fTop) * stride + box.fLeft - onto.box.fLeft) *
                                         static_cast<ptrdiff_t>(kColorBytes);
        for (int x = box.fLeft; x < box.fRight; ++x, out += kColorBytes) {
            const unsigned c = all ? 255 : *coverage++;
            if (c != 0) coverPixel(colorAt(x + 0.5, y + 0.5), c, out);
        }
    }
}

// In font units.
bool ColorGraph::loadShape(uint16_t glyph) {
    GlyphEffort effort(fFace, fData);
    if (fPoints > kMaxPoints || !effort.add(glyph)) return false;
    constexpr FT_Int32 kFlags =
        FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_IGNORE_TRANSFORM;
    const FT_Error error = FT_Load_Glyph(fFace, glyph, kFlags);
    if (FT_ERROR_BASE(error) == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    const bool isShape = error == 0 && fFace->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
    // One that fails may have taken as long as the largest.
    fPoints += isShape ? static_cast<uint64_t>(fFace->glyph->outline.n_points) : 1 << 15;
    return isShape && fPoints <= kMaxPoints;
}

PaintColor ColorGraph::colorOf(const PaletteColor& color) {
    const bool inPalette = color.index < fPaletteSize;
    if (!inPalette) fUsesForeground = true;
    const FT_Color entry = inPalette
                               ? fPalette[color.index]
                               : FT_Color{static_cast<FT_Byte>(SkColorGetB(fForeground)),
                                          static_cast<FT_Byte>(SkColorGetG(fForeground)),
                                          static_cast<FT_Byte>(SkColorGetR(fForeground)), 255};
    const double alpha = entry.alpha * std::clamp(color.alpha, 0.0, 1.0);
    const auto premultiplied = [alpha](FT_Byte channel) { return channel * alpha / 255; };
    return {premultiplied(entry.red), premultiplied(entry.green), premultiplied(entry.blue), alpha};
}

ColorLine ColorGraph::lineOf(const GraphPaint& gradient) {
    ColorLine line;
    if (fPoints > kMaxPoints) return line;
    const ColorTable::Line from = fTable.line(gradient);
    fPoints += from.stops.size();
    for (const ColorTable::Stop& stop : from.stops) {
        line.add(stop.offset, this->colorOf(stop.color));
    }
    line.finish(from.extend);
    return line;
}

bool ColorGraph::takePixels(const SkIRect& box) {
    if (box.isEmpty()) return false;
    fPixels += pixelCount(box);
    return fPixels <= kMaxPixels;
}

}  // namespace portable
