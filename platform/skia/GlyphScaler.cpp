#include "skia/GlyphScaler.h"

#include FT_ADVANCES_H
#include FT_BITMAP_H
#include FT_COLOR_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <new>

#include "skia/ColorGraph.h"
#include "skia/GlyphEffort.h"
#include "skia/Numbers.h"

namespace portable {

namespace {

// Of the pixel size; Android's strength for fake bold.
constexpr FT_Pos kEmboldenDivisor = 34;

// Float to fixed point, truncated, with fractionBits bits after the point.
FT_Fixed toFixed(float v, int fractionBits) {
    const double scaled = std::ldexp(static_cast<double>(v), fractionBits);
    constexpr double kMax = std::numeric_limits<int32_t>::max();
    if (scaled != scaled) return 0;
    return static_cast<FT_Fixed>(std::clamp(scaled, -kMax, kMax));
}

float floatFromFixed(FT_Fixed v) {
    return static_cast<float>(fromFixed(v));
}

void makeBinary(uint8_t* coverage, size_t count) {
    std::transform(coverage, coverage + count, coverage,
                   [](uint8_t c) -> uint8_t { return c < 128 ? 0 : 255; });
}

// Running out of memory must not be taken for a glyph that the font does not have.
bool succeeded(FT_Error error) {
    if (FT_ERROR_BASE(error) == FT_Err_Out_Of_Memory) {
        errno = ENOMEM;  // where the allocator leaves no trace
        throw std::bad_alloc();
    }
    return error == 0;
}

}  // namespace

GlyphScaler::GlyphScaler(FontFace& face, const GlyphSettings& settings)
    : fAccess(face), fFace(fAccess.ft()), fSettings(settings) {
    if (settings.drawable()) this->select();
}

void GlyphScaler::throwIfOutOfMemory() const {
    if (fAccess.outOfMemory()) throw std::bad_alloc();
}

// Sets the face's size and finds what is left for the matrix: the sign of the horizontal scale, the
// skew, and the ratio to the size wanted where FreeType cannot give that size.
void GlyphScaler::select() {
    fLoadFlags = this->loadFlags();
    // Light hinting moves points up and down only.
    const bool light = fSettings.hinting == SkFontHinting::kSlight && !fSettings.alias;
    fLinearAdvance = fSettings.subpixel || fSettings.hinting == SkFontHinting::kNone || light;
    fMatrix.xx = fSettings.scaleX < 0 ? -1.0f : 1.0f;
    fMatrix.xy = fSettings.skewX;
    if (FT_IS_SCALABLE(fFace)) {
        this->selectScalable();
    } else {
        this->selectStrike();
    }
    if (!fReady) return;
    FT_Matrix matrix = {toFixed(fMatrix.xx, 16), -toFixed(fMatrix.xy, 16), 0,
                        toFixed(fMatrix.yy, 16)};
    FT_Set_Transform(fFace, &matrix, nullptr);
}

void GlyphScaler::selectScalable() {
    const float width = std::fabs(fSettings.size * fSettings.scaleX);
    const float height = fSettings.size;
    const FT_F26Dot6 fixedWidth = toFixed(width, 6);
    const FT_F26Dot6 fixedHeight = toFixed(height, 6);
    FontFace::Scaling& current = fAccess.scaling();
    if (!current.selected || current.width != fixedWidth || current.height != fixedHeight) {
        current.selected = false;
        current.selected = succeeded(FT_Set_Char_Size(fFace, fixedWidth, fixedHeight, 72, 72));
        current.width = fixedWidth;
        current.height = fixedHeight;
    }
    if (!current.selected) return;
    fReady = true;
    // FreeType goes no lower than 1; at other sizes a correction would spoil the hinting.
    if (width >= 1 && height >= 1) return;
    const float upem = fFace->units_per_EM;
    const float xPpem = upem * floatFromFixed(fFace->size->metrics.x_scale) / 64;
    const float yPpem = upem * floatFromFixed(fFace->size->metrics.y_scale) / 64;
    fReady = xPpem > 0 && yPpem > 0;
    if (!fReady) return;
    fMatrix.xx *= width / xPpem;
    fMatrix.xy *= height / yPpem;
    fMatrix.yy *= height / yPpem;
}

// The smallest strike that is not below the size wanted, else the largest.
void GlyphScaler::selectStrike() {
    const FT_Pos wanted = toFixed(fSettings.size, 6);
    FT_Int best = -1;
    FT_Pos bestPpem = 0;
    for (FT_Int i = 0; i < fFace->num_fixed_sizes; ++i) {
        const FT_Pos ppem = fFace->available_sizes[i].y_ppem;
        const bool better = bestPpem < wanted ? ppem > bestPpem : ppem >= wanted && ppem < bestPpem;
        if (best >= 0 && !better) continue;
        best = i;
        bestPpem = ppem;
    }
    fAccess.scaling().selected = false;
    if (best < 0 || !succeeded(FT_Select_Size(fFace, best))) return;
    const FT_Size_Metrics& strike = fFace->size->metrics;
    if (strike.x_ppem == 0 || strike.y_ppem == 0) return;
    const float yRatio = fSettings.size / strike.y_ppem;
    fMatrix.xx *= std::fabs(fSettings.size * fSettings.scaleX) / strike.x_ppem;
    fMatrix.xy *= yRatio;
    fMatrix.yy *= yRatio;
    // There are no linear metrics for pictures, and nothing but pictures to load.
    fLinearAdvance = false;
    fLoadFlags &= ~FT_LOAD_NO_BITMAP;
    fReady = true;
}

FT_Int32 GlyphScaler::loadFlags() const {
    FT_Int32 flags = FT_LOAD_TARGET_NORMAL;
    if (fSettings.hinting == SkFontHinting::kNone) {
        flags = FT_LOAD_NO_HINTING;
    } else if (fSettings.alias) {
        flags = FT_LOAD_TARGET_MONO;
    } else if (fSettings.hinting == SkFontHinting::kSlight) {
        flags = FT_LOAD_TARGET_LIGHT;
    }
    flags |= fSettings.forceAutoHinting ? FT_LOAD_FORCE_AUTOHINT : FT_LOAD_NO_AUTOHINT;
    if (!fSettings.embeddedBitmaps) flags |= FT_LOAD_NO_BITMAP;
    return flags | FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_COLOR;
}

bool GlyphScaler::load(SkGlyphID glyph) {
    const bool loaded = this->loadGlyph(glyph);
    this->throwIfOutOfMemory();
    return loaded;
}

bool GlyphScaler::loadGlyph(SkGlyphID glyph) {
    fAdvance = 0;
    fContent = Content::kBlank;
    fKind = fSettings.alias ? MaskKind::kBinary : MaskKind::kGrey;
    fLayers.clear();
    fGlyph = glyph;
    if (!fReady || !this->loadSlot(glyph)) return false;
    this->readAdvance(glyph);
    const FT_GlyphSlot slot = fFace->glyph;
    if (slot->format == FT_GLYPH_FORMAT_BITMAP) {
        fStrike = std::make_shared<StrikeImage>();
        if (!fStrike->assign(*slot)) return true;
        fContent = Content::kStrike;
        if (fStrike->isColored()) fKind = MaskKind::kColor;
    } else if (this->hasGraph(glyph)) {
        fContent = Content::kGraph;
        fKind = MaskKind::kColor;
    } else if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
        fContent = Content::kOutline;
        this->readLayers(glyph);
    }
    return true;
}

bool GlyphScaler::loadSlot(FT_UInt glyph) {
    FT_Int32 flags = fLoadFlags;
    GlyphEffort effort(fFace, fAccess.glyphData());
    if (!effort.add(glyph)) return false;
    if (!effort.hintable()) flags |= FT_LOAD_NO_HINTING;
    if (!(flags & FT_LOAD_NO_BITMAP) && this->bitmapTooLarge(glyph, flags)) {
        if (!FT_IS_SCALABLE(fFace)) return false;
        flags |= FT_LOAD_NO_BITMAP;
    }
    if (!succeeded(FT_Load_Glyph(fFace, glyph, flags))) return false;
    // A picture in SVG can be used by nothing here; the font's outline can.
    if (fFace->glyph->format != FT_GLYPH_FORMAT_BITMAP &&
        fFace->glyph->format != FT_GLYPH_FORMAT_OUTLINE &&
        !succeeded(FT_Load_Glyph(fFace, glyph, flags & ~FT_LOAD_COLOR))) {
        return false;
    }
    if (fSettings.embolden) this->emboldenSlot();
    // Contours of variable fonts overlap, whatever their flags say; other fonts are filled as
    // always.
    int& fill = fFace->glyph->outline.flags;
    fill = fAccess.isVaried() ? fill | FT_OUTLINE_OVERLAP : fill & ~FT_OUTLINE_OVERLAP;
    return true;
}

bool GlyphScaler::bitmapTooLarge(FT_UInt glyph, FT_Int32 flags) {
    if (!FT_HAS_FIXED_SIZES(fFace)) return false;
    if (!succeeded(FT_Load_Glyph(fFace, glyph, flags | FT_LOAD_BITMAP_METRICS_ONLY))) return false;
    const FT_GlyphSlot slot = fFace->glyph;
    return slot->format == FT_GLYPH_FORMAT_BITMAP &&
           static_cast<uint64_t>(slot->bitmap.width) * slot->bitmap.rows > StrikeImage::kMaxPixels;
}

// The shape grows to the right and upwards, the advance stays.
void GlyphScaler::emboldenSlot() {
    const FT_GlyphSlot slot = fFace->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
        const FT_Pos em = FT_MulFix(fFace->units_per_EM, fFace->size->metrics.y_scale);
        succeeded(FT_Outline_Embolden(&slot->outline, em / kEmboldenDivisor));
    } else if (slot->format == FT_GLYPH_FORMAT_BITMAP && slot->bitmap.buffer) {
        constexpr FT_Pos kOnePixel = 64;
        if (succeeded(FT_GlyphSlot_Own_Bitmap(slot))) {
            succeeded(FT_Bitmap_Embolden(slot->library, &slot->bitmap, kOnePixel, 0));
        }
    }
}

void GlyphScaler::readAdvance(FT_UInt glyph) {
    const FT_GlyphSlot slot = fFace->glyph;
    if (!fLinearAdvance) {
        fAdvance = static_cast<float>(static_cast<double>(slot->advance.x) / 64);
        return;
    }
    // Straight from hmtx when no hinting is involved; composite glyphs may report another advance.
    FT_Fixed advance = 0;
    if (FT_Get_Advance(fFace, glyph, fLoadFlags | FT_ADVANCE_FLAG_FAST_ONLY, &advance) != 0) {
        advance = slot->linearHoriAdvance;
    }
    fAdvance = fMatrix.xx * floatFromFixed(advance);
}

// The layers of a COLR glyph, bottom first, each with its palette colour.
void GlyphScaler::readLayers(FT_UInt glyph) {
    FT_UInt layerGlyph = 0;
    FT_UInt colorIndex = 0;
    FT_LayerIterator iterator = {0, 0, nullptr};
    if (!FT_Get_Color_Glyph_Layer(fFace, glyph, &layerGlyph, &colorIndex, &iterator)) return;

    FT_Color* palette = nullptr;
    FT_Palette_Data info = {};
    if (FT_Palette_Select(fFace, 0, &palette) != 0 || FT_Palette_Data_Get(fFace, &info) != 0) {
        palette = nullptr;
    }
    GlyphEffort effort(fFace, fAccess.glyphData());
    do {
        if (!effort.add(layerGlyph)) break;
        // Index 0xFFFF, and any other beyond the palette, is the text colour: opaque here.
        const bool inPalette = palette && colorIndex < info.num_palette_entries;
        const FT_Color color = inPalette ? palette[colorIndex] : FT_Color{0, 0, 0, 255};
        fLayers.push_back({layerGlyph, !inPalette, color});
    } while (FT_Get_Color_Glyph_Layer(fFace, glyph, &layerGlyph, &colorIndex, &iterator));
    fContent = Content::kLayers;
    fKind = MaskKind::kColor;
}

bool GlyphScaler::loadLayer(const Layer& layer) {
    return this->loadSlot(layer.glyph) && fFace->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
}

bool GlyphScaler::layersBox(FT_BBox* all) {
    bool any = false;
    for (const Layer& layer : fLayers) {
        FT_BBox box;
        if (!this->loadLayer(layer) || !outlineBox(fFace->glyph->outline, &box)) continue;
        if (!any) *all = box;
        any = true;
        *all = {std::min(all->xMin, box.xMin), std::min(all->yMin, box.yMin),
                std::max(all->xMax, box.xMax), std::max(all->yMax, box.yMax)};
    }
    this->throwIfOutOfMemory();
    return any;
}

SkIRect GlyphScaler::bounds(const GlyphPlacement& placement) {
    FT_BBox box;
    if (fContent == Content::kStrike) {
        return fStrike->bounds(fMatrix, placement);
    }
    if (fContent == Content::kGraph) {
        SkIRect shapes = SkIRect::MakeEmpty();
        this->withGraph(SK_ColorBLACK, [&](ColorGraph& graph) {
            shapes = graph.bounds(fGlyph, fMatrix, placement);
        });
        return shapes;
    }
    if ((fContent == Content::kOutline && outlineBox(fFace->glyph->outline, &box)) ||
        (fContent == Content::kLayers && this->layersBox(&box))) {
        return placeBox(box, placement);
    }
    return SkIRect::MakeEmpty();
}

void GlyphScaler::render(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) {
    if (window.isEmpty()) return;
    switch (fContent) {
        case Content::kBlank:
            return;
        case Content::kOutline:
            this->renderSlot(placement, window, out);
            this->throwIfOutOfMemory();
            return;
        case Content::kLayers:
            this->forEachLayer(placement, window, [&](const Layer& layer, const uint8_t* mask) {
                for (size_t i = 0; i < pixelCount(window); ++i) {
                    const unsigned alpha = div255(mask[i] * layer.color.alpha);
                    out[i] = static_cast<uint8_t>(alpha + div255(out[i] * (255 - alpha)));
                }
            });
            return;
        case Content::kGraph: {
            std::vector<uint8_t> colors(pixelCount(window) * kColorBytes);
            this->renderColors(placement, window, SK_ColorBLACK, colors.data());
            for (size_t i = 0; i < pixelCount(window); ++i) out[i] = colors[i * kColorBytes + 3];
            return;
        }
        case Content::kStrike:
            fStrike->render(fMatrix, placement, window, out);
            if (fKind == MaskKind::kBinary) makeBinary(out, pixelCount(window));
            return;
    }
}

bool GlyphScaler::renderColors(const GlyphPlacement& placement, const SkIRect& window,
                               SkColor foreground, uint8_t* out) {
    if (window.isEmpty()) return false;
    bool usesForeground = false;
    if (fContent == Content::kStrike) {
        fStrike->renderColors(fMatrix, placement, window, out);
    } else if (fContent == Content::kGraph) {
        this->withGraph(foreground, [&](ColorGraph& graph) {
            graph.render(fGlyph, fMatrix, placement, window, out);
            usesForeground = graph.usesForeground();
        });
    } else if (fContent == Content::kLayers) {
        this->forEachLayer(placement, window, [&](const Layer& layer, const uint8_t* mask) {
            usesForeground = usesForeground || layer.isForeground;
            const SkColor color = layer.isForeground
                                      ? foreground | SK_ColorBLACK
                                      : SkColorSetARGB(layer.color.alpha, layer.color.red,
                                                       layer.color.green, layer.color.blue);
            const unsigned alpha = SkColorGetA(color);
            const auto scaled = [alpha](unsigned c) {
                return static_cast<uint8_t>(div255(c * alpha));
            };
            const uint8_t pixel[] = {scaled(SkColorGetR(color)), scaled(SkColorGetG(color)),
                                     scaled(SkColorGetB(color)), static_cast<uint8_t>(alpha)};
            for (size_t i = 0; i < pixelCount(window); ++i) {
                coverPixel(pixel, mask[i], out + i * kColorBytes);
            }
        });
    }
    return usesForeground;
}

template <typename Cover>
void GlyphScaler::forEachLayer(const GlyphPlacement& placement, const SkIRect& window,
                               Cover cover) {
    std::vector<uint8_t> mask(pixelCount(window));
    for (const Layer& layer : fLayers) {
        if (!this->loadLayer(layer)) continue;
        std::fill(mask.begin(), mask.end(), uint8_t{0});
        this->renderSlot(placement, window, mask.data());
        cover(layer, mask.data());
    }
    this->throwIfOutOfMemory();
}

bool GlyphScaler::hasGraph(SkGlyphID glyph) {
    const ColorTable* table = fSettings.colorGraphs ? fAccess.colorTable() : nullptr;
    return table && table->graphOf(glyph);
}

template <typename Use>
void GlyphScaler::withGraph(SkColor foreground, Use use) {
    ColorGraph graph(fFace, fAccess.glyphData(), *fAccess.colorTable(), fAccess.isVaried(),
                     foreground);
    use(graph);
    this->throwIfOutOfMemory();
}

void GlyphScaler::renderSlot(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) {
    const FT_GlyphSlot slot = fFace->glyph;
    fillOutline(slot->library, slot->outline, fKind, placement, window, out);
}

std::shared_ptr<const GlyphOutline> GlyphScaler::copyOutline() const {
    if (fContent != Content::kOutline) return nullptr;
    return std::make_shared<const GlyphOutline>(*fFace->glyph, fKind);
}

std::shared_ptr<const GlyphPicture> GlyphScaler::copyPicture() const {
    if (fContent != Content::kStrike || fKind != MaskKind::kColor) return nullptr;
    return std::make_shared<const GlyphPicture>(fStrike, fMatrix);
}

}  // namespace portable
