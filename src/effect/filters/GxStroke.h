// The stroke: an outline around, across or inside the glyphs' edges.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/WorkPlane.h"

namespace GxFontEffect {

// Builds a soft-edged disc: K x K bytes of coverage, rows packed, with
//     R = (int)(radius + 0.5), K = 2R + 1.
// Cells up to `radius` pixels from the centre are 255, farther than radius + 1 are 0, with a linear
// ramp between, rounded to nearest. The centre cell is overwritten with 255 clamp(radius, 0, 1):
// deliberate, a disc thinner than a pixel has a weaker centre (radius 0.3: the one cell is 77).
//
// The buffer comes from the C allocator and is the caller's: release it with std::free. Returns K;
// `*out` is left alone when memory runs out, when K is below 1 (radius -1.5 and less) and when K x
// K bytes pass 2^31 - 1 (a K past the int range is returned as the nearest int).
GXTEXT_API int makeCircleKernel(unsigned char** out, float radius);

// What the distance routines work on. Planes have packed rows; everything is borrowed.
struct StrokeDTArgs {
    unsigned char* out = nullptr;           // outStride x outHeight bytes; centre: two such planes
    const unsigned char* mask = nullptr;    // maskStride x maskHeight coverage bytes
    const unsigned char* kernel = nullptr;  // kernelSize x kernelSize bytes
    int32_t maskStride = 0;                 // bytes per mask row
    int32_t maskHeight = 0;                 // mask rows
    int32_t maskOriginY = 0;                // mask row of band row 0
    int32_t maskOriginX = 0;                // mask column of band column 0
    int32_t outStride = 0;                  // bytes per output row
    int32_t outHeight = 0;                  // output rows
    int32_t outOriginY = 0;                 // output row under band row 0
    int32_t outOriginX = 0;                 // output column under band column 0
    int32_t planeSize = 0;                  // offset of the second output plane, centre only
    int32_t radius = 0;                     // not read
    int32_t kernelSize = 0;                 // odd
    int32_t columns = 0;                    // pixels per band row
    int32_t rows = 0;                       // not read
    int32_t rowBegin = 0;                   // first band row
    int32_t rowEnd = 0;                     // one past the last
};

// A stroke before its tint.
struct StrokeBand {
    int64_t width() const { return plane.width; }

    WorkPlane<uint8_t> plane;  // coverage; the first `height` rows
    int64_t x;                 // where its first cell lies on the layers
    int64_t y;
    int64_t height;
};

// The band of a stroke of that size and position around the block's text. Nothing for what a stroke
// does not draw (see below); without memory the block says so.
std::optional<StrokeBand> makeStrokeBand(GxECore::ParamPostProcessing& param, float size,
                                         int position);

// Paints a band of one colour, or of a gradient or pattern, along the glyphs' edges: across them
// (position 0), outside (1) or inside (any other value). The band is the mask, spread by a soft
// disc with a grey-scale maximum; across the edge it is the minimum of the glyphs spread outwards
// and the background spread inwards.
//
// Reads of the parameter block: `dst` and `other` (32-bit layers, premultiplied; `other` may be
// null, else it gets the same band), `src` (8-bit mask), `textRect` and `mode`. Reads of the
// record: `size` (width in pixels; half of it on each side of the edge when centred), `color`
// (0xAARRGGBB, premultiplied by the stack), `position` and `fill`; `opacity` and `cap` are not
// read. Sizes of -2 and less (centred: -3 and less) draw nothing.
//
// Margin: (int)(size + 0.5) outside, (int)(size / 2 + 0.5) centred, 0 inside. Blend: destination
// over source, so the band lies beneath what the layer holds, but for a centred stroke in
// single-layer mode, which lies on top (source over destination). An inside stroke also colours
// the background of the box: the stack keeps it in the glyphs.
//
// A fill runs over the stroke's own box, the text's with the margin on each side, to which the band
// is cut; its colours are weighted by the band's coverage, so that a ramp of one colour paints what
// that colour does.
//
// Null inputs, a box the wrong way round, work buffers that do not fit in 2^31 - 1 bytes and
// failed allocations leave the layers as they were. Coverage outside the bitmap is 0. Cost per
// pixel: near the glyphs' edges proportional to R up to 35 and the same for all above, little
// elsewhere; work bytes per padded pixel 2 (3 centred) plus the disc, with a fill 5 more per pixel
// of its box; from 36 on up to 7 more of a tile of 1024 x 1024 pixels, without which the stroke
// takes longer.
class GXTEXT_API GxStroke : public GxPropertyCore<GxStrokeProperty> {
public:
    GxStroke() : GxPropertyCore(GXE_STYLE_STROKE) {}

    // Copies the fill's record, too.
    void setProperty(const GxProperty* source) override;
    int getOffset() override;
    int getReach() override;
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

    // Spread the band rows [rowBegin, rowEnd) of the mask into the output with the rule out =
    // max(out, max(0, coverage + kernel - 255)), the kernel's centre on the pixel's own output
    // cell. Coverage is the mask (outside), 255 minus the mask (inside), or both, each into a plane
    // of its own (centre). Take a StrokeDTArgs and return 0. Bytes already in the output count.
    // Null pointers and bands or windows that leave their planes do nothing.
    static int partalDTStrokeCenter(void* args);
    static int partalDTStrokeOutside(void* args);
    static int partalDTStrokeInside(void* args);

private:
    void paintFill(const StrokeBand& band, int blend, GxECore::ParamPostProcessing& param);

    std::unique_ptr<GxECoreBase> ownFill;  // the core whose record the record's fill points to
};

}  // namespace GxFontEffect
