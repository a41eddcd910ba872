// The masks that shadows and glows are cast from in place of the letters'.
#pragma once

#include <memory>
#include <vector>

#include "effect/GxECore.h"
#include "raster/GxBitmap.h"

namespace GxFontEffect {

// How an effect uses its silhouette.
enum class CastKind { kNone, kOuter, kInner };
CastKind castKindOf(int style);

// Makes the masks that the effects of one run of the stack ask for, each when the first effect
// asks. The outline and the last mask are kept: effects that share one come one after the other.
class Silhouettes {
public:
    // Mask and box of the letters are those of `letters`, the strokes those among `cores`; all is
    // borrowed. What is cast ends at `canvas`, a box of the layers.
    Silhouettes(const GxECore::ParamPostProcessing& letters, const GxRect& canvas,
                const std::vector<GxECoreBase*>& cores);

    // Sets mask and box in the block to what the core is to see. False when memory ran out; the
    // block says so, too.
    bool choose(GxECoreBase& core, GxECore::ParamPostProcessing& param);

private:
    struct Shape {
        Shape(const GxRect& extent, const GxRect& textBox);
        void add(const GxECore::ParamPostProcessing& other);
        bool addStroke(GxECore::ParamPostProcessing& around, float size, int position);
        void addPlane(int64_t x, int64_t y, const uint8_t* plane, int64_t width, int64_t height,
                      int64_t stride);

        GxRect extent;  // of the mask on the layers
        GxBitmap mask;
        GxRect box;
    };

    std::unique_ptr<Shape> grownShape(const GxRect& box, int64_t growth) const;
    bool makeOutline();
    bool makeSpread(const GxSilhouette& silhouette);
    bool makeChoked(float spread);
    GxECore::ParamPostProcessing blockOf(Shape& shape) const;

    GxECore::ParamPostProcessing letters;
    GxRect canvas;
    const std::vector<GxECoreBase*>& cores;
    std::unique_ptr<Shape> outline;  // the letters with the strokes
    std::unique_ptr<Shape> last;
    CastKind lastKind = CastKind::kNone;  // what `last` was made for
    GxSilhouette lastSilhouette;
};

}  // namespace GxFontEffect
