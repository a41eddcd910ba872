// The effect stack of one text: which effects it has, and the render that turns glyph masks into
// pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "raster/GxBitmap.h"
#include "raster/GxGlyph.h"

namespace GxFontEffect {

struct ColorGlyphs;  // effect/ColorGlyphs.h
class LineMasks;     // effect/LineMasks.h
class PlaneBitmap;   // raster/PlaneMemory.h

// Ordered set of effects, each style at most once unless repeats are on, and the four steps of a
// render:
//
//   stack.addText(0xFF202020);
//   stack.initEffect(width, height);          // sizes of the output
//   stack.setDstBitmap(&output);              // 32-bit, zero-filled
//   stack.renderEffectLayer(x, y, &glyph);    // once per mask
//   stack.doEffectPostProcessing();
//   stack.compositeLayers(&output);           // straight alpha afterwards
//
// The stack owns its cores and its work bitmaps; the output, the masks and the records passed in
// are borrowed. Add operations return the effect's id (0, 1, 2, ... in order of first addition) or
// -1, and then changed nothing. The steps of a render report nothing: without a destination or
// memory they do nothing. A caller who is to show the picture asks hasFailed() after the last step.
// One thread at a time.
class GXTEXT_API GxEffect {
public:
    GxEffect();
    // The pointer is not used.
    explicit GxEffect(void* unused);
    // Fresh cores with the same ids and copies of the records; no render state. A copy that lacks
    // an effect because memory ran out has failed until all effects are released.
    GxEffect(const GxEffect& other);
    GxEffect& operator=(const GxEffect&) = delete;
    virtual ~GxEffect();

    // True when there is an effect, or the text fill is not opaque.
    virtual bool hasEffects() const;
    virtual bool hasEffect(int style) const;

    // Adds the effect, or gives the one of that style new settings. A negative id asks for the next
    // free one. -1 for a style without a core and when memory runs out: what was there stays, with
    // its settings.
    int addEffect(int id, int style, const GxProperty* property);
    int addEffect(int style, const GxProperty* property);

    // With repeats, adding always makes a new effect with an id of its own (one that is asked for
    // and taken gives way to the next free one), so a style may occur any number of times: those
    // added later lie over those added earlier, as between styles. The text fill stays one. Off by
    // default; switching it off again leaves the effects that are there.
    void setRepeats(bool allow) { repeats = allow; }
    bool getRepeats() const { return repeats; }

    // Angles in degrees, any value; sizes and distances in pixels, truncated and clamped to 0-100;
    // opacities clamped to 0-1; colours 0xAARRGGBB, whose own alpha is replaced by the opacity. At
    // most 256 stops are read; -1 when they are null with a positive count, and for a null pattern.
    int addOuterShadowText(float angle, float distance, float size, uint32_t color, float opacity);
    int addInnerShadowText(float angle, float distance, float size, uint32_t color, float opacity);
    int addOuterGlowText(float size, uint32_t color, float opacity, int stopCount,
                         const GxGradient* stops);
    int addInnerGlowText(float size, uint32_t color, float opacity, int stopCount,
                         const GxGradient* stops);
    int addBevelText(int kind, float size, float depth, int technique, int direction, int soften,
                     float opacity, float angle, float altitude, uint32_t highlightColor,
                     float highlightOpacity, uint32_t shadowColor, float shadowOpacity);
    int addEmbossText(int kind, float size, float depth, int technique, int direction, int soften,
                      float opacity, float angle, float altitude, uint32_t highlightColor,
                      float highlightOpacity, uint32_t shadowColor, float shadowOpacity);
    // Scale 0-2.
    int addLinearGradientText(float angle, float scale, float opacity, int stopCount,
                              const GxGradient* stops);
    int addRadialGradientText(float scale, float opacity, int stopCount, const GxGradient* stops);
    // Position: GxStrokeProperty::Position. `cap` is carried only.
    int addStrokeText(float size, uint32_t color, float opacity, int cap, int position);
    // Strokes painted with a gradient or pattern over the stroke's own box in place of one colour.
    int addLinearGradientStrokeText(float size, int cap, int position, float angle, float scale,
                                    float opacity, int stopCount, const GxGradient* stops);
    int addRadialGradientStrokeText(float size, int cap, int position, float scale, float opacity,
                                    int stopCount, const GxGradient* stops);
    int addPatternStrokeText(float size, int cap, int position, GxBitmap* pattern, float scale,
                             float opacity);
    // Scale 0-10. The pattern is copied by the core.
    int addPatternText(GxBitmap* pattern, float scale, float opacity);
    // Text fill. The colour's alpha applies to the whole image at the end, the opacity to the fill
    // alone.
    int addText(uint32_t color, float opacity);
    int addText(uint32_t color);

    // What a shadow or glow is cast from, until it is removed. False when no effect has the id.
    //
    // Outer shadow and outer glow run as if the text were a larger shape. With kOutline it is the
    // letters together with the bands of all outside and centred strokes of the stack, each pixel
    // the maximum, whatever the strokes' colours. With a spread it is grown by a further outside
    // stroke of that size. Margins grow by the spread, and by the widest stroke's. Inner shadow and
    // inner glow are choked by the spread: the background that they blur reaches that much further
    // into the letters, which still confine the result; castFrom is not read. Other effects ignore
    // all of it.
    bool setSilhouette(int id, const GxSilhouette& silhouette);

    // What an effect runs over (GxSpan, other values are the whole text): with GXE_SPAN_LINE it
    // runs once for each mask of a render, in their order, as if that were the whole text, so that
    // each line has a gradient of its own. False when no effect has the id.
    bool setSpan(int id, int span);

    // New core of that style, owned by the caller until releaseEffect(core); null for a style
    // without one.
    GxECoreBase* createEffect(int id, int style);
    int getNewEffectId();
    // False when no effect has the id.
    bool removeEffect(int id);
    // Removes all effects; ids start at 0 again. The two are the same.
    void releaseEffect();
    void cleanAllEffect();
    // Destroys one core, taking it out of the stack if it is in it; null is ignored.
    void releaseEffect(GxECoreBase* core);
    // Drops the render's bitmaps.
    void releaseBitmap();

    // The first one added of that style; null when the stack has none.
    GxECoreBase* getEffect(int style) const;
    // The effect of that id, or null.
    GxECoreBase* findEffect(int id) const;
    // The cores in render order, top of the stacking first in single-layer mode. Rebuilt by
    // initEffect.
    const std::vector<GxECoreBase*>& getLayers() const { return layers; }

    // Box of all masks of the current render, in output pixels.
    GxRect* getTextRect() { return &textRect; }
    // Null before setTextBox, of which it has the size, in a render with fresh words.
    GxBitmap* getSrcBitmap() const { return srcBitmap; }
    GxBitmap* getDstBitmap() const { return dstBitmap; }
    // The setters borrow.
    void setSrcBitmap(GxBitmap* bitmap) { srcBitmap = bitmap; }
    void setDstBitmap(GxBitmap* bitmap) { dstBitmap = bitmap; }
    uint32_t getMode() const { return mode; }

    // Opacity of the text fill, clamped to 0-1. Below 1 every render uses two layers.
    void setTextOpacity(float opacity);
    float getTextOpacity() const { return textOpacity; }
    void clearTextOpacity() { textOpacity = 1.0f; }

    // Keeps what effects over the text (inside stroke, inner glow, inner shadow) paint within the
    // glyphs: in single-layer mode, after those cores and before the text fill, every output pixel
    // without coverage is cleared. Their plain arithmetic colours such pixels too. Off by default,
    // since it presumes an output that starts empty.
    void setConfineInside(bool confine) { confineInside = confine; }
    bool getConfineInside() const { return confineInside; }

    // What the output holds before and after a render.
    enum class Output {
        kAny,         // anything before; bytes R, G, B, A after
        kFreshWords,  // all zero before, so that only what the effects can reach is composed; words
                      // 0xAARRGGBB after
    };
    // kAny unless told otherwise.
    void setOutput(Output value) { output = value; }
    // A render with fresh words has to say, between initEffect and the first mask, which box of the
    // output holds all masks: the stack's own bitmaps are no larger than what box and effects can
    // reach. Masks are cut to it. Does nothing in other renders.
    void setTextBox(const GxRect& box);
    // Of a render with fresh words: everything outside is still zero.
    const GxRect& getPaintedRect() const { return paintedRect; }

    // Margins in pixels around the text: the widest effect decides each side.
    int getLeftOffset() const;
    int getRightOffset() const;
    int getTopOffset() const;
    int getBottomOffset() const;

    // Zero-terminated key text of all effects in order of addition, after each its settings that
    // are not the default (a silhouette "C", castFrom short, spread short; a span "R", span short);
    // the caller releases it with array delete. Null when memory runs out. The form with a colour
    // gives the text fill that colour first, and is null too when that could not be kept.
    char* getMapKey();
    char* getMapKey(uint32_t color);

    void initEffect(uint32_t width, uint32_t height);
    void renderEffectLayer(int x, int y, const GxGlyph* glyph);
    // A mask some of whose glyphs have colours of their own; null for none. Effects beneath the
    // text see all silhouettes; the fill and the effects over it see the letters, and the colours
    // come over everything, as opaque as the fill. The stack takes them over.
    void renderEffectLayer(int x, int y, const GxGlyph* glyph, std::unique_ptr<ColorGlyphs> colors);
    void doEffectPostProcessing();
    void compositeLayers(GxBitmap* result);

    // Whether the picture of the current or last render is not the one asked for: since initEffect
    // a step or an effect could not get its memory (ParamPostProcessing::outOfMemory), or the stack
    // is an incomplete copy. Answers until the next initEffect, compositeLayers included.
    bool hasFailed() const { return renderFailed || incompleteCopy; }

private:
    int addText(uint32_t color, const GxTextProperty& record);
    int addFilledStroke(float size, int cap, int position, const GxProperty& fill);
    int appendEffect(int id, int style, const GxProperty* property);
    int margin(int (GxECoreBase::*offset)()) const;
    void runOverLines(GxECoreBase& core, const GxRect& canvas, GxECore::ParamPostProcessing& param);
    bool keepColors(int x, int y, const GxGlyph& glyph, std::unique_ptr<ColorGlyphs> colors);
    GxBitmap* fillMask() const;
    uint32_t fillOpacity() const;
    void paintColors(const GxBitmap& result, const ColorGlyphs& colors) const;
    int64_t silhouetteGrowth(GxECoreBase& core, int (GxECoreBase::*ofStroke)()) const;
    bool needsTwoLayers() const;
    bool needsLines() const;
    void orderSingleLayer();
    void orderTwoLayers();
    void allocateLayers(uint32_t maskWidth, uint32_t maskHeight, uint32_t backHeight);
    void clampTextRect();
    GxRect grownByReach(const GxRect& box) const;
    bool startedEmpty(const GxBitmap* layer) const;
    template <typename Step>
    void forEachSpan(const GxBitmap& layer, Step step) const;
    template <typename Step>
    void forEachPart(const GxBitmap& layer, const GxBitmap& mask, uint64_t first, uint64_t count,
                     Step step) const;
    void clearUncovered() const;
    void mixLayers(const GxBitmap& result, uint64_t first, uint64_t count) const;
    void renderCores();
    bool isBareText() const;
    void paintBareText(const GxBitmap& result, uint32_t alpha) const;

    std::vector<std::unique_ptr<GxECoreBase>> effects;
    std::vector<GxECoreBase*> layers;
    std::unique_ptr<PlaneBitmap> ownSrcBitmap;
    std::unique_ptr<LineMasks> lineMasks;  // of this render, when an effect runs over lines
    // Of a render with colour glyphs: the mask of the letters alone, and the colours, which lie in
    // the output.
    std::unique_ptr<PlaneBitmap> lettersBitmap;
    std::vector<std::unique_ptr<ColorGlyphs>> colorGlyphs;
    GxBitmap* srcBitmap = nullptr;  // the own one unless a caller set another
    GxBitmap* dstBitmap = nullptr;
    std::unique_ptr<PlaneBitmap> backBitmap;
    // Of the render: extents of the output, and where the mask and the rows of the back layer lie
    // in it.
    uint32_t outputWidth = 0;
    uint32_t outputHeight = 0;
    int32_t maskLeft = 0;
    int32_t maskTop = 0;
    int32_t backTop = 0;
    GxRect textRect;
    bool textRectEmpty = true;
    GxRect paintedRect;
    Output output = Output::kAny;
    uint32_t mode = GXE_MODE_SINGLE_LAYER;
    float textOpacity = 1.0f;
    uint32_t textColor = 0xFF000000u;
    int32_t nextId = 0;
    int32_t textAlpha = -1;  // of the last text colour; -1 acts as 255
    bool repeats = false;
    bool confineInside = false;
    bool renderFailed = false;
    bool incompleteCopy = false;
};

}  // namespace GxFontEffect
