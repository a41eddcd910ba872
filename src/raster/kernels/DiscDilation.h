// Grey-scale dilation of a coverage mask by a soft disc, and the byte-wise minimum of two planes.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// A band of mask pixels and the output they spread into.
//
// `mask` and `out` are the first pixel of the band and the output cell under the kernel's first
// cell when the kernel lies on that pixel; the kernel's side is odd. Read are `rows` x `columns`
// mask bytes, read and written (rows + kernelSize - 1) x (columns + kernelSize - 1) output bytes.
// The mask and the output must not overlap. Empty bands and kernels do nothing; no alignment is
// needed.
struct DilationBand {
    const uint8_t* mask = nullptr;
    int64_t maskStride = 0;  // bytes
    int64_t columns = 0;
    int64_t rows = 0;
    const uint8_t* kernel = nullptr;  // kernelSize x kernelSize bytes, rows packed
    int64_t kernelSize = 0;
    uint8_t* out = nullptr;
    int64_t outStride = 0;  // bytes
};

// For every pixel m and kernel cell k: out = max(out, max(0, m + k - 255)). What `out` holds
// counts. Fast for discs: kernels with four equal quadrants that grow weaker away from the middle
// row and, beyond radius 127, column. Others go cell by cell. Wide discs take work memory for a
// part of the band; where there is none, the result is the same.
void dilateOutside(const DilationBand& band);
// The same of the inverted coverage 255 - m: out = max(out, max(0, k - m)).
void dilateInside(const DilationBand& band);
// a = min(a, b), byte by byte.
void minimum(uint8_t* a, const uint8_t* b, int64_t count);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void dilateOutside(const DilationBand& band);
void dilateInside(const DilationBand& band);
void minimum(uint8_t* a, const uint8_t* b, int64_t count);
}  // namespace plain

}  // namespace GxFontEffect::kernels
