#include "effect/GxEffect.h"

#include <android/log.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <numeric>
#include <optional>

#include "effect/ColorGlyphs.h"
#include "effect/GxCoreFactory.h"
#include "effect/KeyWriter.h"
#include "effect/LineMasks.h"
#include "effect/Silhouettes.h"
#include "raster/BlendCut.h"
#include "raster/BorrowedBitmap.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"
#include "raster/PlaneMemory.h"
#include "raster/kernels/BlendRows.h"

namespace GxFontEffect {

namespace {

constexpr const char* kEffectTag = "GxEffect";
constexpr int kMaxStops = 256;
// Two layers and the mask take 9 bytes a pixel.
constexpr uint64_t kSpanPixels = 1 << 12;

// --- conversions of the add operations ---

// 0 to period - 1.
float wrapDegrees(float degrees, int32_t period) {
    const int32_t a = toInt(degrees) % period;
    return static_cast<float>(a < 0 ? a + period : a);
}

float clampPercent(float value) {
    return static_cast<float>(toInt(clampFloat(value, 0.0f, 100.0f)));
}

float clampOpacity(float opacity) {
    return clampFloat(opacity, 0.0f, 1.0f);
}

uint32_t alphaOf(float opacity) {
    return static_cast<uint32_t>(toInt(clampOpacity(opacity) * 255.0f + 0.5f));
}

// The colour's own alpha is discarded.
uint32_t premultiply(uint32_t color, float opacity) {
    const uint32_t a = alphaOf(opacity);
    const auto channel = [&](int shift) {
        return ((a * (((color >> shift) & 0xFFu) + 1)) >> 8) << shift;
    };
    return a << 24 | channel(16) | channel(8) | channel(0);
}

uint32_t withAlpha(uint32_t color, float opacity) {
    return (color & 0x00FFFFFFu) | alphaOf(opacity) << 24;
}

// A copy of the caller's stops with the effect's opacity folded into their colours.
class Stops {
public:
    Stops(int count, const GxGradient* stops, float opacity)
        : count_(std::clamp(count, 0, kMaxStops)) {
        if (count_ > 0 && !stops) {
            failed_ = true;
            return;
        }
        for (int i = 0; i < count_; ++i) stops_[i] = convert(stops[i], clampOpacity(opacity));
    }

    bool failed() const { return failed_; }
    int count() const { return count_; }
    const GxGradient* get() const { return count_ > 0 ? stops_ : nullptr; }

private:
    static GxGradient convert(const GxGradient& stop, float opacity) {
        GxGradient result;
        result.color = withAlpha(stop.color, stop.opacity * opacity);
        result.opacity = clampOpacity(stop.opacity);
        const auto hundredths = static_cast<float>(toInt(stop.position * 100.0f));
        result.position = clampFloat(hundredths / 100.0f, 0.0f, 1.0f);
        return result;
    }

    int count_;
    bool failed_ = false;
    GxGradient stops_[kMaxStops];
};

// --- the settings of an effect beyond its record ---

void writeSettingsKey(const GxECoreBase& core, char** cursor) {
    const GxSilhouette& silhouette = core.getSilhouette();
    KeyWriter writer(cursor);
    if (!silhouette.isPlain()) {
        writer.letter('C').shortForm(silhouette.castFrom).shortForm(silhouette.spread);
    }
    if (core.getSpan() != GXE_SPAN_TEXT) writer.letter('R').shortForm(core.getSpan());
}

int settingsKeyLength(const GxECoreBase& core) {
    return (core.getSilhouette().isPlain() ? 0 : 3) + (core.getSpan() == GXE_SPAN_TEXT ? 0 : 2);
}

// --- layers ---

std::unique_ptr<PlaneBitmap> newBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel) {
    std::unique_ptr<PlaneBitmap> bitmap(new (std::nothrow)
                                            PlaneBitmap(width, height, bytesPerPixel));
    if (bitmap && !bitmap->get()->data) bitmap.reset();
    return bitmap;
}

// Null without one.
GxBitmap* bitmapOf(const std::unique_ptr<PlaneBitmap>& plane) {
    return plane ? plane->get() : nullptr;
}

kernels::Rgba* pixelsOf(const GxBitmap* layer) {
    return reinterpret_cast<kernels::Rgba*>(layer->data);
}

// What `width` x `height` pixels hold of `box`; no pixels where it has none.
GxRect cutTo(uint32_t width, uint32_t height, const GxRect& box) {
    GxRect cut(std::clamp(box.left, 0, saturateInt(width)),
               std::clamp(box.top, 0, saturateInt(height)),
               std::clamp(box.right, 0, saturateInt(width)),
               std::clamp(box.bottom, 0, saturateInt(height)));
    return cut.isEmpty() ? GxRect() : cut;
}

// Takes `box` into `all`, which may be nothing yet.
void unite(GxRect& all, const GxRect& box, bool nothingYet) {
    if (nothingYet) {
        all = box;
        return;
    }
    all.left = std::min(all.left, box.left);
    all.top = std::min(all.top, box.top);
    all.right = std::max(all.right, box.right);
    all.bottom = std::max(all.bottom, box.bottom);
}

}  // namespace

GxEffect::GxEffect() {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "GxEffect(%p)", this);
}

GxEffect::GxEffect(void* /*unused*/) {}

GxEffect::GxEffect(const GxEffect& other)
    : mode(other.mode),
      textOpacity(other.textOpacity),
      textColor(other.textColor),
      nextId(other.nextId),
      textAlpha(other.textAlpha),
      repeats(other.repeats),
      confineInside(other.confineInside),
      incompleteCopy(other.incompleteCopy) {
    for (const auto& core : other.effects) {
        const int copied = appendEffect(core->getId(), core->getStyle(), core->getProperty());
        incompleteCopy = incompleteCopy || copied < 0;
        if (copied < 0) continue;
        effects.back()->setSilhouette(core->getSilhouette());
        effects.back()->setSpan(core->getSpan());
    }
}

GxEffect::~GxEffect() {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "~GxEffect(%p)", this);
}

// --- the set of effects ---

bool GxEffect::hasEffects() const {
    return !effects.empty() || textOpacity < 1.0f;
}

bool GxEffect::hasEffect(int style) const {
    return getEffect(style) != nullptr;
}

GxECoreBase* GxEffect::getEffect(int style) const {
    for (const auto& core : effects) {
        if (core->getStyle() == style) return core.get();
    }
    return nullptr;
}

GxECoreBase* GxEffect::findEffect(int id) const {
    for (const auto& core : effects) {
        if (core->getId() == id) return core.get();
    }
    return nullptr;
}

int GxEffect::addEffect(int id, int style, const GxProperty* property) {
    if (repeats && style != GXE_STYLE_TEXT) {
        return appendEffect(findEffect(id) ? -1 : id, style, property);
    }
    if (GxECoreBase* present = getEffect(style)) {
        present->setProperty(property);
        return property && !present->keptLastProperty() ? -1 : present->getId();
    }
    return appendEffect(id, style, property);
}

int GxEffect::appendEffect(int id, int style, const GxProperty* property) {
    // Room first: after it nothing fails but the core's own allocations, and an id handed out is
    // kept.
    try {
        effects.reserve(effects.size() + 1);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    const int32_t idBefore = nextId;
    std::unique_ptr<GxECoreBase> core(createEffect(id, style));
    if (!core) return -1;
    core->setProperty(property);
    if (property && !core->getProperty()) {
        nextId = idBefore;
        return -1;
    }
    effects.push_back(std::move(core));
    return effects.back()->getId();
}

int GxEffect::addEffect(int style, const GxProperty* property) {
    return addEffect(-1, style, property);
}

GxECoreBase* GxEffect::createEffect(int id, int style) {
    GxECoreBase* core = makeEffectCore(style);
    if (core) core->setId(id >= 0 ? id : getNewEffectId());
    return core;
}

int GxEffect::getNewEffectId() {
    for (;;) {
        if (nextId < 0) nextId = 0;
        const int32_t id = nextId;
        nextId = id == std::numeric_limits<int32_t>::max() ? -1 : id + 1;
        if (!repeats || !findEffect(id)) return id;
    }
}

bool GxEffect::removeEffect(int id) {
    GxECoreBase* core = findEffect(id);
    releaseEffect(core);
    return core != nullptr;
}

void GxEffect::releaseEffect() {
    layers.clear();
    effects.clear();
    nextId = 0;
    incompleteCopy = false;
}

void GxEffect::cleanAllEffect() {
    releaseEffect();
}

void GxEffect::releaseEffect(GxECoreBase* core) {
    if (!core) return;
    std::erase(layers, core);
    const auto owned = std::find_if(effects.begin(), effects.end(),
                                    [&](const auto& effect) { return effect.get() == core; });
    if (owned != effects.end()) {
        effects.erase(owned);
    } else {
        delete core;
    }
}

void GxEffect::releaseBitmap() {
    ownSrcBitmap.reset();
    srcBitmap = nullptr;
    backBitmap.reset();
    dstBitmap = nullptr;
    lettersBitmap.reset();
    colorGlyphs.clear();
}

bool GxEffect::setSilhouette(int id, const GxSilhouette& silhouette) {
    GxECoreBase* core = findEffect(id);
    if (!core) return false;
    const CastKind kind = castKindOf(core->getStyle());
    GxSilhouette kept;
    if (kind != CastKind::kNone) kept.spread = clampPercent(silhouette.spread);
    if (kind == CastKind::kOuter && silhouette.castFrom == GxSilhouette::kOutline) {
        kept.castFrom = GxSilhouette::kOutline;
    }
    core->setSilhouette(kept);
    return true;
}

bool GxEffect::setSpan(int id, int span) {
    GxECoreBase* core = findEffect(id);
    if (core) core->setSpan(span == GXE_SPAN_LINE ? GXE_SPAN_LINE : GXE_SPAN_TEXT);
    return core != nullptr;
}

void GxEffect::setTextOpacity(float opacity) {
    textOpacity = clampOpacity(opacity);
}

// --- typed add operations ---

int GxEffect::addOuterShadowText(float angle, float distance, float size, uint32_t color,
                                 float opacity) {
    const GxOuterShadowProperty record(wrapDegrees(angle, 360), clampPercent(distance),
                                       clampPercent(size), premultiply(color, opacity),
                                       clampOpacity(opacity));
    return addEffect(GXE_STYLE_OUTER_SHADOW, &record);
}

int GxEffect::addInnerShadowText(float angle, float distance, float size, uint32_t color,
                                 float opacity) {
    const GxInnerShadowProperty record(wrapDegrees(angle, 360), clampPercent(distance),
                                       clampPercent(size), premultiply(color, opacity),
                                       clampOpacity(opacity));
    return addEffect(GXE_STYLE_INNER_SHADOW, &record);
}

int GxEffect::addOuterGlowText(float size, uint32_t color, float opacity, int stopCount,
                               const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    const GxOuterGlowProperty record(clampPercent(size), withAlpha(color, opacity),
                                     clampOpacity(opacity), copy.count(), copy.get());
    return addEffect(GXE_STYLE_OUTER_GLOW, &record);
}

int GxEffect::addInnerGlowText(float size, uint32_t color, float opacity, int stopCount,
                               const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    const GxInnerGlowProperty record(clampPercent(size), withAlpha(color, opacity),
                                     clampOpacity(opacity), copy.count(), copy.get());
    return addEffect(GXE_STYLE_INNER_GLOW, &record);
}

int GxEffect::addBevelText(int kind, float size, float depth, int technique, int direction,
                           int soften, float opacity, float angle, float altitude,
                           uint32_t highlightColor, float highlightOpacity, uint32_t shadowColor,
                           float shadowOpacity) {
    const GxBevelProperty record(
        kind, size, depth, technique, direction, soften, clampOpacity(opacity),
        wrapDegrees(angle, 360), wrapDegrees(altitude, 90),
        withAlpha(highlightColor, highlightOpacity), clampOpacity(highlightOpacity),
        withAlpha(shadowColor, shadowOpacity), clampOpacity(shadowOpacity));
    return addEffect(GXE_STYLE_BEVEL, &record);
}

int GxEffect::addEmbossText(int kind, float size, float depth, int technique, int direction,
                            int soften, float opacity, float angle, float altitude,
                            uint32_t highlightColor, float highlightOpacity, uint32_t shadowColor,
                            float shadowOpacity) {
    const GxEmbossProperty record(
        kind, size, depth, technique, direction, soften, clampOpacity(opacity),
        wrapDegrees(angle, 360), wrapDegrees(altitude, 90),
        withAlpha(highlightColor, highlightOpacity), clampOpacity(highlightOpacity),
        withAlpha(shadowColor, shadowOpacity), clampOpacity(shadowOpacity));
    return addEffect(GXE_STYLE_EMBOSS, &record);
}

int GxEffect::addLinearGradientText(float angle, float scale, float opacity, int stopCount,
                                    const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    const GxLinearGradientProperty record(wrapDegrees(angle, 360), scale, clampOpacity(opacity),
                                          copy.count(), copy.get());
    return addEffect(GXE_STYLE_LINEAR_GRADIENT, &record);
}

int GxEffect::addRadialGradientText(float scale, float opacity, int stopCount,
                                    const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    const GxRadialGradientProperty record(0.0f, scale, clampOpacity(opacity), copy.count(),
                                          copy.get());
    return addEffect(GXE_STYLE_RADIAL_GRADIENT, &record);
}

int GxEffect::addStrokeText(float size, uint32_t color, float opacity, int cap, int position) {
    const GxStrokeProperty record(clampPercent(size), premultiply(color, opacity),
                                  clampOpacity(opacity), cap, position);
    return addEffect(GXE_STYLE_STROKE, &record);
}

int GxEffect::addFilledStroke(float size, int cap, int position, const GxProperty& fill) {
    GxStrokeProperty record(clampPercent(size), 0, fill.opacity, cap, position);
    record.fill = &fill;
    return addEffect(GXE_STYLE_STROKE, &record);
}

int GxEffect::addLinearGradientStrokeText(float size, int cap, int position, float angle,
                                          float scale, float opacity, int stopCount,
                                          const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    return addFilledStroke(
        size, cap, position,
        GxLinearGradientProperty(wrapDegrees(angle, 360), scale, clampOpacity(opacity),
                                 copy.count(), copy.get()));
}

int GxEffect::addRadialGradientStrokeText(float size, int cap, int position, float scale,
                                          float opacity, int stopCount, const GxGradient* stops) {
    const Stops copy(stopCount, stops, opacity);
    if (copy.failed()) return -1;
    return addFilledStroke(
        size, cap, position,
        GxRadialGradientProperty(0.0f, scale, clampOpacity(opacity), copy.count(), copy.get()));
}

int GxEffect::addPatternStrokeText(float size, int cap, int position, GxBitmap* pattern,
                                   float scale, float opacity) {
    if (!pattern) return -1;
    return addFilledStroke(size, cap, position,
                           GxPatternProperty(pattern, scale, clampOpacity(opacity)));
}

int GxEffect::addPatternText(GxBitmap* pattern, float scale, float opacity) {
    if (!pattern) return -1;
    const GxPatternProperty record(pattern, scale, clampOpacity(opacity));
    return addEffect(GXE_STYLE_PATTERN, &record);
}

int GxEffect::addText(uint32_t color, float opacity) {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "AddText(%p) - (color:%d/opacity:%f)", this,
                        static_cast<int>(color), static_cast<double>(opacity));
    return addText(color, GxTextProperty(premultiply(color, opacity), clampOpacity(opacity)));
}

int GxEffect::addText(uint32_t color) {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "AddText(%p) - (color:%x)", this, color);
    return addText(color, GxTextProperty(color | 0xFF000000u, 1.0f));
}

int GxEffect::addText(uint32_t color, const GxTextProperty& record) {
    const int id = addEffect(GXE_STYLE_TEXT, &record);
    if (id >= 0) textAlpha = static_cast<int32_t>(color >> 24);
    return id;
}

// --- margins and key ---

int GxEffect::margin(int (GxECoreBase::*offset)()) const {
    int widest = 0;
    for (const auto& core : effects) {
        const int64_t growth = silhouetteGrowth(*core, offset);
        widest = std::max(widest, saturateInt((core.get()->*offset)() + growth));
    }
    return widest;
}

// How much further an effect reaches because of what it is cast from.
int64_t GxEffect::silhouetteGrowth(GxECoreBase& core, int (GxECoreBase::*ofStroke)()) const {
    const GxSilhouette& silhouette = core.getSilhouette();
    if (castKindOf(core.getStyle()) != CastKind::kOuter) return 0;
    int widest = 0;
    for (const auto& other : effects) {
        const bool isOutline =
            silhouette.castFrom == GxSilhouette::kOutline && other->getStyle() == GXE_STYLE_STROKE;
        if (isOutline) widest = std::max(widest, (other.get()->*ofStroke)());
    }
    return int64_t{widest} + toInt(silhouette.spread);
}

int GxEffect::getLeftOffset() const {
    return margin(&GxECoreBase::getLeftOffset);
}
int GxEffect::getRightOffset() const {
    return margin(&GxECoreBase::getRightOffset);
}
int GxEffect::getTopOffset() const {
    return margin(&GxECoreBase::getTopOffset);
}
int GxEffect::getBottomOffset() const {
    return margin(&GxECoreBase::getBottomOffset);
}

char* GxEffect::getMapKey() {
    size_t length = 0;
    for (const auto& core : effects) {
        if (const GxProperty* property = core->getProperty()) {
            length += static_cast<size_t>(property->getSequentialCharLength());
            length += static_cast<size_t>(settingsKeyLength(*core));
        }
    }
    // Zero-filled: glows and gradients write less than they reserve.
    char* key = new (std::nothrow) char[length + 1]();
    char* cursor = key;
    for (const auto& core : effects) {
        const GxProperty* property = core->getProperty();
        if (property && property->toSequentialChar(&cursor)) {
            writeSettingsKey(*core, &cursor);
        }
    }
    return key;
}

char* GxEffect::getMapKey(uint32_t color) {
    textColor = color;
    return addText(color, textOpacity) < 0 ? nullptr : getMapKey();
}

// --- render ---

void GxEffect::initEffect(uint32_t width, uint32_t height) {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "InitEffect(%p)", this);
    textRect = GxRect();
    textRectEmpty = true;
    paintedRect = GxRect();
    renderFailed = false;
    releaseBitmap();
    outputWidth = width;
    outputHeight = height;
    maskLeft = maskTop = backTop = 0;
    lineMasks.reset();
    layers.clear();
    try {
        layers.reserve(effects.size());
    } catch (const std::bad_alloc&) {
        renderFailed = true;
        return;
    }
    for (const auto& core : effects) layers.push_back(core.get());

    mode = needsTwoLayers() ? GXE_MODE_TWO_LAYERS : GXE_MODE_SINGLE_LAYER;
    if (mode == GXE_MODE_TWO_LAYERS) {
        orderTwoLayers();
    } else {
        orderSingleLayer();
    }
    if (output == Output::kAny) allocateLayers(width, height, height);
    if (needsLines()) {
        lineMasks.reset(new (std::nothrow) LineMasks);
        renderFailed = renderFailed || !lineMasks;
    }

    GxECore::ParamInit param{width, height, mode};
    for (GxECoreBase* core : layers) core->initEffect(&param);
}

void GxEffect::setTextBox(const GxRect& box) {
    if (output != Output::kFreshWords) return;
    const GxRect mask = cutTo(outputWidth, outputHeight, box);
    const GxRect back = cutTo(outputWidth, outputHeight, grownByReach(mask));
    maskLeft = mask.left;
    maskTop = mask.top;
    backTop = mode == GXE_MODE_TWO_LAYERS ? back.top : 0;
    allocateLayers(mask.width(), mask.height(), back.height());
}

void GxEffect::allocateLayers(uint32_t maskWidth, uint32_t maskHeight, uint32_t backHeight) {
    const bool hasTwo = mode == GXE_MODE_TWO_LAYERS;
    ownSrcBitmap = newBitmap(maskWidth, maskHeight, 1);
    srcBitmap = bitmapOf(ownSrcBitmap);
    backBitmap = hasTwo ? newBitmap(outputWidth, backHeight, 4) : nullptr;
    renderFailed = renderFailed || !srcBitmap || (hasTwo && !backBitmap);
}

bool GxEffect::needsLines() const {
    return std::any_of(layers.begin(), layers.end(),
                       [](GxECoreBase* core) { return core->getSpan() == GXE_SPAN_LINE; });
}

bool GxEffect::needsTwoLayers() const {
    if (textOpacity < 1.0f) return true;
    return std::any_of(layers.begin(), layers.end(), [](GxECoreBase* core) {
        return placeOf(*core).target == EffectTarget::kBoth;
    });
}

// From the top of the stacking: effects over the text, the text, effects beneath it, newest first
// in each group.
void GxEffect::orderSingleLayer() {
    layers.clear();
    for (const EffectRank rank : {EffectRank::kOver, EffectRank::kText, EffectRank::kBeneath}) {
        for (auto core = effects.rbegin(); core != effects.rend(); ++core) {
            if (placeOf(**core).rank == rank) layers.push_back(core->get());
        }
    }
}

// Newest first, the text fill last.
void GxEffect::orderTwoLayers() {
    std::reverse(layers.begin(), layers.end());
    const auto text = std::find_if(layers.begin(), layers.end(), [](GxECoreBase* core) {
        return core->getStyle() == GXE_STYLE_TEXT;
    });
    if (text != layers.end()) std::rotate(text, text + 1, layers.end());
}

void GxEffect::renderEffectLayer(int x, int y, const GxGlyph* glyph) {
    renderEffectLayer(x, y, glyph, nullptr);
}

void GxEffect::renderEffectLayer(int x, int y, const GxGlyph* glyph,
                                 std::unique_ptr<ColorGlyphs> colors) {
    if (glyph && srcBitmap) {
        const GxRect box(x, y, saturateInt(int64_t{x} + glyph->width),
                         saturateInt(int64_t{y} + glyph->height));
        unite(textRect, box, textRectEmpty);
        textRectEmpty = false;
        const int32_t maskX = saturateInt(int64_t{x} - maskLeft);
        const int32_t maskY = saturateInt(int64_t{y} - maskTop);
        const uint8_t* letters = colors ? colors->letters.get() : nullptr;
        if (lineMasks && !lineMasks->keep(maskX, maskY, *glyph, letters)) renderFailed = true;
        if (!keepColors(x, y, *glyph, std::move(colors))) renderFailed = true;
        GxBlender().drawBitmap(maskX, maskY, srcBitmap, glyph->pixels, glyph->width, glyph->height,
                               0xFF000000u);
    }
    GxECore::ParamRender param{x, y, glyph, dstBitmap};
    for (GxECoreBase* core : layers) core->render(&param);
}

// Before the mask joins the others. False when memory ran out.
bool GxEffect::keepColors(int x, int y, const GxGlyph& glyph, std::unique_ptr<ColorGlyphs> colors) {
    if (!colors && !lettersBitmap) return true;
    if (!lettersBitmap) {
        lettersBitmap = newBitmap(srcBitmap->width, srcBitmap->height, 1);
        if (!lettersBitmap) return false;
        std::copy_n(srcBitmap->data, srcBitmap->pixelCount(), lettersBitmap->get()->data);
    }
    const uint8_t* letters = colors ? colors->letters.get() : glyph.pixels;
    GxBlender().drawBitmap(saturateInt(int64_t{x} - maskLeft), saturateInt(int64_t{y} - maskTop),
                           lettersBitmap->get(), letters, glyph.width, glyph.height, 0xFF000000u);
    if (!colors) return true;
    colors->x = x;
    colors->y = y;
    try {
        colorGlyphs.push_back(std::move(colors));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

// What the text fill, and what lies over it, is painted in.
GxBitmap* GxEffect::fillMask() const {
    return lettersBitmap ? lettersBitmap->get() : srcBitmap;
}

void GxEffect::clampTextRect() {
    const int32_t right = saturateInt(int64_t{maskLeft} + srcBitmap->width);
    const int32_t bottom = saturateInt(int64_t{maskTop} + srcBitmap->height);
    textRect.left = std::clamp(textRect.left, maskLeft, right);
    textRect.top = std::clamp(textRect.top, maskTop, bottom);
    textRect.right = std::clamp(textRect.right, maskLeft, right);
    textRect.bottom = std::clamp(textRect.bottom, maskTop, bottom);
}

GxRect GxEffect::grownByReach(const GxRect& box) const {
    int64_t reach = 0;
    for (GxECoreBase* core : layers) {
        const int64_t growth = silhouetteGrowth(*core, &GxECoreBase::getReach);
        reach = std::max(reach, core->getReach() + growth);
    }
    return GxRect(saturateInt(int64_t{box.left} - reach), saturateInt(int64_t{box.top} - reach),
                  saturateInt(int64_t{box.right} + reach),
                  saturateInt(int64_t{box.bottom} + reach));
}

// A mask of the caller's may have coverage outside the text's box.
bool GxEffect::startedEmpty(const GxBitmap* layer) const {
    return output == Output::kFreshWords && isMask(srcBitmap) &&
           srcBitmap == bitmapOf(ownSrcBitmap) && layer->width == outputWidth &&
           layer->height == outputHeight;
}

// Calls step(first, count) for stretches of the layer's pixels that all steps together can keep in
// the nearest caches; where the layer started empty, only for those that can have been painted,
// none of which goes beyond its row.
template <typename Step>
void GxEffect::forEachSpan(const GxBitmap& layer, Step step) const {
    const auto cut = [&](uint64_t first, uint64_t end) {
        for (; first < end; first += kSpanPixels) step(first, std::min(end - first, kSpanPixels));
    };
    if (!startedEmpty(&layer)) {
        cut(0, layer.pixelCount());
        return;
    }
    const GxRect painted = cutTo(layer.width, layer.height, paintedRect);
    for (int32_t y = painted.top; y < painted.bottom; ++y) {
        const uint64_t row = uint64_t{layer.width} * static_cast<uint64_t>(y);
        cut(row + static_cast<uint64_t>(painted.left), row + static_cast<uint64_t>(painted.right));
    }
}

// Cuts such a stretch where the mask begins and ends and calls step(first, count, coverage), null
// for pixels that the mask does not hold.
template <typename Step>
void GxEffect::forEachPart(const GxBitmap& layer, const GxBitmap& mask, uint64_t first,
                           uint64_t count, Step step) const {
    uint64_t begin = 0, end = 0;  // of the mask's cells
    const uint8_t* coverage = mask.data;
    if (!startedEmpty(&layer)) {
        end = mask.pixelCount();
    } else if (layer.width > 0) {
        const uint64_t y = first / layer.width;
        const int64_t maskRow = static_cast<int64_t>(y) - maskTop;
        if (maskRow >= 0 && maskRow < mask.height) {
            begin = y * layer.width + static_cast<uint64_t>(maskLeft);
            end = begin + mask.width;
            coverage += maskRow * mask.width;
        }
    }
    const uint64_t last = first + count;
    const uint64_t from = std::clamp(begin, first, last), to = std::clamp(end, from, last);
    if (first < from) step(first, from - first, nullptr);
    if (from < to) step(from, to - from, coverage + (from - begin));
    if (to < last) step(to, last - to, nullptr);
}

void GxEffect::clearUncovered() const {
    if (!isMask(srcBitmap) || !isLayer(dstBitmap)) return;
    const auto clear = [&](uint64_t first, uint64_t count, const uint8_t* coverage) {
        kernels::Rgba* pixels = pixelsOf(dstBitmap) + first;
        if (coverage) {
            kernels::clearUncoveredRow(pixels, coverage, count);
        } else if (output == Output::kFreshWords) {
            std::fill_n(pixels, count, kernels::Rgba{});
        }
    };
    forEachSpan(*dstBitmap, [&](uint64_t first, uint64_t count) {
        forEachPart(*dstBitmap, *fillMask(), first, count, clear);
    });
}

void GxEffect::runOverLines(GxECoreBase& core, const GxRect& canvas,
                            GxECore::ParamPostProcessing& param) {
    if (!lineMasks) return;
    const bool ofLetters = placeOf(core).rank != EffectRank::kBeneath;
    const auto runOver = [&](GxBitmap& mask, const GxRect& box) {
        GxECore::ParamPostProcessing line = param;
        line.src = &mask;
        line.srcLeft = maskLeft;
        line.srcTop = maskTop - backTop;
        GxRect layerBox(box.left + line.srcLeft, box.top + line.srcTop, box.right + line.srcLeft,
                        box.bottom + line.srcTop);
        line.textRect = &layerBox;
        Silhouettes ofLine(line, canvas, layers);
        if (ofLine.choose(core, line)) core.doPostProcessing(&line);
        param.outOfMemory = param.outOfMemory || line.outOfMemory;
    };
    const bool hasMemory = lineMasks->forEach(*srcBitmap, ofLetters, runOver);
    param.outOfMemory = param.outOfMemory || !hasMemory;
}

void GxEffect::doEffectPostProcessing() {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "DoEffectPostProcessing(%p) - start", this);
    const bool hasOutput =
        output == Output::kAny || (isLayer(dstBitmap) && startedEmpty(dstBitmap));
    if (hasOutput && isMask(srcBitmap) && !textRectEmpty) {
        clampTextRect();
        if (!textRect.isEmpty()) {
            unite(paintedRect, grownByReach(textRect), paintedRect.isEmpty());
            if (!isBareText()) renderCores();
        }
    }
    lineMasks.reset();
    textRectEmpty = true;
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "DoEffectPostProcessing(%p) - end", this);
}

void GxEffect::renderCores() {
    const bool hasTwo = mode == GXE_MODE_TWO_LAYERS;
    GxRect box = textRect;
    GxECore::ParamPostProcessing param;
    param.src = srcBitmap;
    param.textRect = &box;
    param.mode = mode;
    param.srcLeft = maskLeft;
    param.srcTop = maskTop - backTop;

    // Both layers have the same rows.
    GxBitmap* front = dstBitmap;
    GxBitmap* back = bitmapOf(backBitmap);
    std::optional<BorrowedBitmap> rows;
    if (back && output == Output::kFreshWords) {
        front = &rows.emplace(pixelsOf(dstBitmap) + size_t{outputWidth} * size_t(backTop),
                              outputWidth, back->height, 4);
        box.top -= backTop;
        box.bottom -= backTop;
    }
    const GxRect canvas =
        output == Output::kFreshWords
            ? GxRect(0, 0, saturateInt(front->width), saturateInt(front->height))
            : GxRect(0, 0, saturateInt(srcBitmap->width), saturateInt(srcBitmap->height));
    Silhouettes ofAll(param, canvas, layers);
    param.src = fillMask();
    Silhouettes ofLetters(param, canvas, layers);
    bool confine = false;  // something over the text has painted, and the text has not
    for (GxECoreBase* core : layers) {
        const EffectPlace place = placeOf(*core);
        const bool over = !hasTwo && place.rank == EffectRank::kOver;
        if (confine && !over) {
            clearUncovered();
            confine = false;
        }
        param.dst = hasTwo && place.target != EffectTarget::kOutput ? back : front;
        param.other = hasTwo && place.target == EffectTarget::kBoth ? front : nullptr;
        param.outOfMemory = false;
        if (core->getSpan() == GXE_SPAN_LINE) {
            runOverLines(*core, canvas, param);
        } else if ((place.rank == EffectRank::kBeneath ? ofAll : ofLetters).choose(*core, param)) {
            core->doPostProcessing(&param);
        }
        renderFailed = renderFailed || param.outOfMemory;
        if (over) confine = confineInside;
    }
    if (confine) clearUncovered();
}

void GxEffect::mixLayers(const GxBitmap& result, uint64_t first, uint64_t count) const {
    const GxBitmap& back = *bitmapOf(backBitmap);
    const uint64_t above = uint64_t{result.width} * static_cast<uint64_t>(backTop);
    const uint64_t end = above + back.pixelCount();
    if (first < above || first >= end) return;
    const auto mix = [&](uint64_t from, uint64_t pixels, const uint8_t* coverage) {
        const kernels::Rgba* beneath = pixelsOf(&back) + (from - above);
        if (coverage) {
            kernels::mixLayersRow(pixelsOf(&result) + from, beneath, coverage, pixels);
        } else if (output == Output::kFreshWords) {
            // A weight of 255 leaves it as it is.
            std::copy_n(beneath, pixels, pixelsOf(&result) + from);
        }
    };
    forEachPart(result, *srcBitmap, first, std::min(count, end - first), mix);
}

// Letters alone onto an output that started empty: a pixel depends on its coverage only.
bool GxEffect::isBareText() const {
    return mode == GXE_MODE_SINGLE_LAYER && layers.size() == 1 && colorGlyphs.empty() &&
           layers.front()->getStyle() == GXE_STYLE_TEXT && isLayer(dstBitmap) &&
           startedEmpty(dstBitmap);
}

// What painting and fading make of each coverage, looked up for each pixel.
void GxEffect::paintBareText(const GxBitmap& result, uint32_t alpha) const {
    constexpr uint32_t kCoverages = 256;
    std::array<uint8_t, kCoverages> coverages;
    std::iota(coverages.begin(), coverages.end(), uint8_t{0});
    std::array<kernels::Rgba, kCoverages> words{};
    BorrowedBitmap mask(coverages.data(), kCoverages, 1, 1);
    BorrowedBitmap layer(words.data(), kCoverages, 1, 4);
    GxRect box(0, 0, kCoverages, 1);
    GxECore::ParamPostProcessing param;
    param.src = &mask;
    param.dst = &layer;
    param.textRect = &box;
    param.mode = mode;
    layers.front()->doPostProcessing(&param);
    kernels::fadeIntoWordsRow(words.data(), kCoverages, alpha);
    kernels::paintByCoverageRows(
        cutToBitmap(maskLeft, maskTop, &result, srcBitmap->data, srcBitmap->width,
                    srcBitmap->height, srcBitmap->width, 1),
        words.data());
}

// 0 to 255.
uint32_t GxEffect::fillOpacity() const {
    GxECoreBase* fill = getEffect(GXE_STYLE_TEXT);
    const GxProperty* record = fill ? fill->getProperty() : nullptr;
    return record ? alphaOf(record->opacity) : 255;
}

// Over one layer; or into the upper one of two, so that mixing them by coverage shows them.
void GxEffect::paintColors(const GxBitmap& result, const ColorGlyphs& colors) const {
    const GxBitmap& pixels = *colors.pixels->get();
    const GxBitmap& mask = *srcBitmap;
    const uint32_t opacity = fillOpacity();
    const bool mixes = isLayer(bitmapOf(backBitmap));
    const auto place = [](int64_t edge, int32_t first, uint32_t extent) {
        return static_cast<int32_t>(std::clamp<int64_t>(edge, first, int64_t{first} + extent));
    };
    const GxRect shown =
        cutTo(result.width, result.height,
              GxRect(place(int64_t{colors.x} + colors.box.left, maskLeft, mask.width),
                     place(int64_t{colors.y} + colors.box.top, maskTop, mask.height),
                     place(int64_t{colors.x} + colors.box.right, maskLeft, mask.width),
                     place(int64_t{colors.y} + colors.box.bottom, maskTop, mask.height)));
    for (int32_t y = shown.top; y < shown.bottom; ++y) {
        const auto rowAt = [&](const GxBitmap& bitmap, int32_t left, int32_t top) {
            return static_cast<size_t>(y - top) * bitmap.width +
                   static_cast<size_t>(shown.left - left);
        };
        kernels::Rgba* out = pixelsOf(&result) + rowAt(result, 0, 0);
        const kernels::Rgba* color = pixelsOf(&pixels) + rowAt(pixels, colors.x, colors.y);
        const uint8_t* coverage = mask.data + rowAt(mask, maskLeft, maskTop);
        for (uint32_t i = 0; i < shown.width(); ++i) {
            if (color[i].a == 0) continue;
            out[i] = mixes ? kernels::coverForMix(out[i], color[i], opacity, coverage[i])
                           : kernels::coverFaded(out[i], color[i], opacity);
        }
    }
}

void GxEffect::compositeLayers(GxBitmap* result) {
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "CompositeLayers(%p) - start", this);
    if (isLayer(result)) {
        const uint32_t alpha = textAlpha < 0 ? 255u : static_cast<uint32_t>(textAlpha);
        const bool fresh = output == Output::kFreshWords;
        const bool mixes =
            isMask(srcBitmap) && isLayer(bitmapOf(backBitmap)) && (!fresh || startedEmpty(result));
        const auto fade = fresh ? kernels::fadeIntoWordsRow : kernels::fadeAndUnpremultiplyRow;
        for (const auto& colors : colorGlyphs) paintColors(*result, *colors);
        if (result == dstBitmap && !paintedRect.isEmpty() && isBareText()) {
            paintBareText(*result, alpha);
        } else {
            forEachSpan(*result, [&](uint64_t first, uint64_t count) {
                if (mixes) mixLayers(*result, first, count);
                fade(pixelsOf(result) + first, count, alpha);
            });
        }
    }
    releaseBitmap();
    mode = GXE_MODE_SINGLE_LAYER;
    __android_log_print(ANDROID_LOG_DEBUG, kEffectTag, "CompositeLayers(%p) - end", this);
}

}  // namespace GxFontEffect
