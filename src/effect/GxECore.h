// The contract of an effect core: what the stack tells it and what it answers.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "GxExport.h"
#include "raster/GxBitmap.h"
#include "raster/GxGlyph.h"

namespace GxFontEffect {

class GxProperty;

// Which effect a core is. Style 9 has no core, but the layer order treats it like a stroke; 13 is
// the base class's own default and counts as an effect beneath the text.
enum GxEffectStyle : int {
    GXE_STYLE_OUTER_SHADOW = 1,
    GXE_STYLE_INNER_SHADOW = 2,
    GXE_STYLE_OUTER_GLOW = 3,
    GXE_STYLE_INNER_GLOW = 4,
    GXE_STYLE_BEVEL = 5,
    GXE_STYLE_EMBOSS = 6,
    GXE_STYLE_LINEAR_GRADIENT = 7,
    GXE_STYLE_RADIAL_GRADIENT = 8,
    GXE_STYLE_UNUSED_STROKE = 9,
    GXE_STYLE_STROKE = 10,
    GXE_STYLE_PATTERN = 11,
    GXE_STYLE_TEXT = 12,
    GXE_STYLE_BASE = 13,
};

// How a render composes its layers.
enum GxCompositeMode : uint32_t {
    GXE_MODE_SINGLE_LAYER = 0,
    GXE_MODE_TWO_LAYERS = 1,  // effects beneath the text go to a back layer of their own
};

// What a shadow or a glow takes for the text, see GxEffect::setSilhouette.
struct GxSilhouette {
    enum { kLetters = 0, kOutline = 1 };

    int castFrom = kLetters;
    float spread = 0;  // pixels, truncated and clamped to 0-100

    bool isPlain() const { return castFrom == kLetters && spread == 0; }
};

// What an effect runs over, see GxEffect::setSpan.
enum GxSpan : int {
    GXE_SPAN_TEXT = 0,  // all masks of a render together
    GXE_SPAN_LINE = 1,  // each by itself
};

// Parameter blocks, built by the stack. All pointers are borrowed for the call.
namespace GxECore {

struct ParamInit {
    uint32_t width = 0;   // of the output and of every layer, in pixels
    uint32_t height = 0;  // likewise
    uint32_t mode = GXE_MODE_SINGLE_LAYER;
};

struct ParamRender {
    int32_t x = 0;  // left of the glyph mask in the output
    int32_t y = 0;  // top of it
    const GxGlyph* glyph = nullptr;
    GxBitmap* dst = nullptr;
};

struct ParamPostProcessing {
    GxBitmap* dst = nullptr;     // the 32-bit layer to paint into
    GxBitmap* src = nullptr;     // 8-bit mask of the whole text
    GxRect* textRect = nullptr;  // box of all glyph masks, inside the mask; in the layers' pixels
    uint32_t mode = GXE_MODE_SINGLE_LAYER;
    GxBitmap* other = nullptr;  // the other layer, for cores that paint both; else null
    int32_t srcLeft = 0;        // where the mask's first pixel lies in the layers, 0 or more
    int32_t srcTop = 0;
    // What an inner shadow blurs instead of `src`, which goes on to confine it: an 8-bit mask of
    // the same size, nowhere stronger. Null for `src`.
    GxBitmap* choked = nullptr;
    // Set by a core that painted nothing because its work memory was not to be had or would pass
    // its limit. The stack clears it before each core.
    bool outOfMemory = false;
};

}  // namespace GxECore

// One effect. The stack makes it, gives it an id and a property record, and per render calls
// initEffect once, render for every glyph and doPostProcessing once, where all painting happens. A
// core never fails a render: null blocks, missing properties and missing bitmaps make it do
// nothing. One that runs out of memory leaves its layers as they were and says so in the block. Not
// locked.
class GXTEXT_API GxECoreBase {
public:
    GxECoreBase() = default;
    GxECoreBase(const GxECoreBase&) = delete;
    GxECoreBase& operator=(const GxECoreBase&) = delete;
    virtual ~GxECoreBase() = default;

    virtual bool initEffect(GxECore::ParamInit* /*param*/) { return true; }
    virtual bool render(GxECore::ParamRender* /*param*/) { return true; }
    virtual void doPostProcessing(GxECore::ParamPostProcessing* /*param*/) {}

    // Keeps a copy of the record; null, or a record of another effect, leaves the current one.
    virtual void setProperty(const GxProperty* property) = 0;
    // The core's own record, null until one was set.
    virtual GxProperty* getProperty() = 0;

    virtual float getOpacity() { return 1.0f; }
    virtual int getStyle() { return style; }

    // Pixels that the effect needs beyond the glyph masks, per side.
    virtual int getLeftOffset() { return getOffset(); }
    virtual int getRightOffset() { return getOffset(); }
    virtual int getTopOffset() { return getOffset(); }
    virtual int getBottomOffset() { return getOffset(); }

    virtual void setId(int value) { id = value; }
    virtual int getId() { return id; }

    // The same margin on every side; 0 unless a core says otherwise.
    virtual int getOffset() { return 0; }

    // How far beyond the text's box, in pixels to any side, doPostProcessing may touch a layer with
    // the present record; more than that is allowed here, less is not.
    virtual int getReach() { return std::numeric_limits<int>::max(); }

    // False when memory ran out in the last setProperty, which kept the record before it.
    virtual bool keptLastProperty() const { return true; }

    // The stack's settings for this effect. Cores do not read them: the stack gives them the mask.
    void setSilhouette(const GxSilhouette& value) { silhouette = value; }
    const GxSilhouette& getSilhouette() const { return silhouette; }
    void setSpan(int value) { span = value; }
    int getSpan() const { return span; }

protected:
    explicit GxECoreBase(int effectStyle) : style(effectStyle) {}

    int32_t style = GXE_STYLE_BASE;
    int32_t id = -1;

private:
    GxSilhouette silhouette;
    int32_t span = GXE_SPAN_TEXT;
};

// A core whose record owns nothing: setProperty copies it whole. Cores that copy stops or bitmaps
// override it.
template <typename Property>
class GxPropertyCore : public GxECoreBase {
public:
    void setProperty(const GxProperty* source) override {
        const auto* record = dynamic_cast<const Property*>(source);
        if (record) keep(std::unique_ptr<Property>(new (std::nothrow) Property(*record)));
    }
    GxProperty* getProperty() override { return property.get(); }
    bool keptLastProperty() const override { return kept; }

protected:
    explicit GxPropertyCore(int effectStyle) : GxECoreBase(effectStyle) {}

    // Takes over the copy of a record. Null, for want of memory, leaves the current one: false.
    bool keep(std::unique_ptr<Property> copy) {
        kept = copy != nullptr;
        if (kept) property = std::move(copy);
        return kept;
    }

    std::unique_ptr<Property> property;

private:
    bool kept = true;
};

}  // namespace GxFontEffect
