#include "skia/GlyphOutline.h"

#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

#include "skia/Numbers.h"

namespace portable {

namespace {

// The sum, held within ±kMaxCoordinate.
FT_Pos moved(FT_Pos v, int64_t distance) {
    constexpr int64_t kMax = kMaxCoordinate;
    return static_cast<FT_Pos>(std::clamp(v + distance, -kMax, kMax));
}

bool exceedsRaster(const FT_Outline& outline) {
    // FreeType refuses outlines from 2^24 on; sums on the way there must not overflow either.
    constexpr FT_Pos kLimit = 1 << 24;
    return std::any_of(outline.points, outline.points + outline.n_points, [](const FT_Vector& p) {
        return p.x <= -kLimit || p.x >= kLimit || p.y <= -kLimit || p.y >= kLimit;
    });
}

// False for an outline that is refused.
bool getBitmap(FT_Library library, FT_Outline* outline, const FT_Bitmap& bitmap) {
    const FT_Error error = FT_Outline_Get_Bitmap(library, outline, &bitmap);
    if (FT_ERROR_BASE(error) == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return error == 0;
}

void fillGrey(FT_Library library, FT_Outline* outline, const SkIRect& window, uint8_t* out) {
    FT_Bitmap bitmap = {};
    bitmap.width = static_cast<unsigned>(window.fRight - window.fLeft);
    bitmap.rows = static_cast<unsigned>(window.fBottom - window.fTop);
    bitmap.pitch = window.fRight - window.fLeft;
    bitmap.buffer = out;
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    getBitmap(library, outline, bitmap);
}

// Where the edges of contours that overlap coincide, a pixel's coverage would count twice and show
// as a notch: finer pixels, each full at most once, are averaged instead. What is left of the error
// is a sixteenth of the range.
constexpr int kFineness = 8;

void fillOverlapping(FT_Library library, const FT_Outline& outline, const SkIRect& window,
                     uint8_t* out) {
    constexpr int kRowsAtOnce = 16;
    const int width = window.fRight - window.fLeft;
    const int height = window.fBottom - window.fTop;
    const int stride = width * kFineness;
    std::vector<uint8_t> fine(static_cast<size_t>(stride) * kRowsAtOnce * kFineness);
    std::vector<FT_Vector> points(outline.points, outline.points + outline.n_points);
    FT_Outline scaled = outline;
    scaled.points = points.data();
    for (int y = 0; y < height; y += kRowsAtOnce) {
        const int rows = std::min(height - y, kRowsAtOnce);
        const FT_Pos bottom = FT_Pos{height - y - rows} * 64;  // of the part, the outline's origin
        for (size_t i = 0; i < points.size(); ++i) {
            points[i] = {outline.points[i].x * kFineness,
                         (outline.points[i].y - bottom) * kFineness};
        }
        if (exceedsRaster(scaled)) continue;
        std::fill(fine.begin(), fine.end(), uint8_t{0});
        fillGrey(library, &scaled, SkIRect::MakeWH(stride, rows * kFineness), fine.data());
        for (int row = 0; row < rows; ++row) {
            const uint8_t* source = fine.data() + static_cast<ptrdiff_t>(row) * kFineness * stride;
            uint8_t* line = out + (static_cast<ptrdiff_t>(y) + row) * width;
            for (int x = 0; x < width; ++x, source += kFineness) {
                unsigned sum = kFineness * kFineness / 2;
                for (int i = 0; i < kFineness * kFineness; ++i) {
                    sum += source[i / kFineness * stride + i % kFineness];
                }
                line[x] = static_cast<uint8_t>(sum / (kFineness * kFineness));
            }
        }
    }
}

// FreeType's rasteriser of whole pixels counts rows and columns in 16 bits: with 32,768 or 65,535
// of them it never ends.
constexpr int kMaxBinarySide = 1 << 14;

void fillBinaryPart(FT_Library library, FT_Outline* outline, int width, int height, uint8_t* out,
                    ptrdiff_t stride) {
    const int pitch = (width + 7) / 8;
    std::vector<uint8_t> bits(static_cast<size_t>(pitch) * static_cast<size_t>(height));
    FT_Bitmap bitmap = {};
    bitmap.width = static_cast<unsigned>(width);
    bitmap.rows = static_cast<unsigned>(height);
    bitmap.pitch = pitch;
    bitmap.buffer = bits.data();
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    if (!getBitmap(library, outline, bitmap)) return;
    const uint8_t* row = bits.data();
    for (int y = 0; y < height; ++y, row += pitch, out += stride) {
        for (int x = 0; x < width; ++x) out[x] = (row[x >> 3] >> (7 - (x & 7)) & 1) * 255;
    }
}

void fillBinary(FT_Library library, FT_Outline* outline, const SkIRect& window, uint8_t* out) {
    const int width = window.fRight - window.fLeft;
    const int height = window.fBottom - window.fTop;
    for (int y = 0; y < height; y += kMaxBinarySide) {
        for (int x = 0; x < width; x += kMaxBinarySide) {
            const int columns = std::min(width - x, kMaxBinarySide);
            const int rows = std::min(height - y, kMaxBinarySide);
            // The part's lower left corner, which the outline is placed by.
            const FT_Pos left = FT_Pos{x} * 64;
            const FT_Pos bottom = FT_Pos{height - y - rows} * 64;
            FT_Outline_Translate(outline, -left, -bottom);
            fillBinaryPart(library, outline, columns, rows, out + ptrdiff_t{y} * width + x, width);
            FT_Outline_Translate(outline, left, bottom);
        }
    }
}

}  // namespace

bool outlineBox(const FT_Outline& outline, FT_BBox* box) {
    if (outline.n_contours == 0) return false;
    FT_Outline_Get_CBox(&outline, box);
    return true;
}

SkIRect placeBox(const FT_BBox& box, const GlyphPlacement& p) {
    const double unit = p.scale / 64;  // of 26.6, y upwards
    const SkIRect placed =
        SkIRect::MakeLTRB(floorToInt(static_cast<double>(box.xMin) * unit + p.dx),
                          floorToInt(-static_cast<double>(box.yMax) * unit + p.dy),
                          ceilToInt(static_cast<double>(box.xMax) * unit + p.dx),
                          ceilToInt(-static_cast<double>(box.yMin) * unit + p.dy));
    return placed.isEmpty() ? SkIRect::MakeEmpty() : placed;
}

void fillOutline(FT_Library library, const FT_Outline& outline, MaskKind kind,
                 const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) {
    if (outline.n_points <= 0 || outline.n_contours <= 0) return;
    const double x0 = (placement.dx - window.fLeft) * 64;
    const double y0 = (window.fBottom - placement.dy) * 64;
    std::vector<FT_Vector> points(outline.points, outline.points + outline.n_points);
    if (placement.scale == 1) {
        const auto dx = static_cast<int64_t>(std::floor(x0 + 0.5));
        const auto dy = static_cast<int64_t>(std::floor(y0 + 0.5));
        for (FT_Vector& p : points) p = {moved(p.x, dx), moved(p.y, dy)};
    } else {
        for (FT_Vector& p : points) {
            p.x = floorToInt(static_cast<double>(p.x) * placement.scale + x0 + 0.5);
            p.y = floorToInt(static_cast<double>(p.y) * placement.scale + y0 + 0.5);
        }
    }
    // Shares everything but the points with the original, which must stay as it is.
    FT_Outline placed = outline;
    placed.points = points.data();
    if (exceedsRaster(placed)) return;
    // Scaled outlines are filled by pixel centres alone, without FreeType's care for thin parts.
    if (placement.scale != 1) placed.flags |= FT_OUTLINE_IGNORE_DROPOUTS;
    if (kind == MaskKind::kBinary) {
        fillBinary(library, &placed, window, out);
    } else if (placed.flags & FT_OUTLINE_OVERLAP) {
        fillOverlapping(library, placed, window, out);
    } else {
        fillGrey(library, &placed, window, out);
    }
}

GlyphOutline::GlyphOutline(const FT_GlyphSlotRec& slot, MaskKind kind)
    : fLibrary(slot.library),
      fKind(kind),
      fOutline(slot.outline),
      fBlock(new char[bytesOf(slot.outline)]) {
    const auto points = static_cast<size_t>(fOutline.n_points);
    const auto contours = static_cast<size_t>(fOutline.n_contours);
    char* next = fBlock.get();
    const auto copy = [&next](auto*& array, size_t count) {
        const size_t bytes = count * sizeof(*array);
        if (bytes != 0) std::memcpy(next, array, bytes);
        array = reinterpret_cast<std::remove_reference_t<decltype(array)>>(next);
        next += bytes;
    };
    copy(fOutline.points, points);  // the strictest alignment first
    copy(fOutline.contours, contours);
    copy(fOutline.tags, points);
    fOutline.flags &= ~FT_OUTLINE_OWNER;
}

size_t GlyphOutline::bytesOf(const FT_Outline& outline) {
    return static_cast<size_t>(outline.n_points) * (sizeof(FT_Vector) + sizeof(*outline.tags)) +
           static_cast<size_t>(outline.n_contours) * sizeof(*outline.contours);
}

SkIRect GlyphOutline::bounds(const GlyphPlacement& placement) const {
    FT_BBox box;
    return outlineBox(fOutline, &box) ? placeBox(box, placement) : SkIRect::MakeEmpty();
}

void GlyphOutline::render(const GlyphPlacement& placement, const SkIRect& window,
                          uint8_t* out) const {
    fillOutline(fLibrary, fOutline, fKind, placement, window, out);
}

}  // namespace portable
