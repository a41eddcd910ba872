#include "raster/kernels/BoxBlur.h"

namespace GxFontEffect::kernels::plain {

namespace {

// Means of windows of a line of `length` cells, `step` apart: each stands where its window began.
void meanLine(uint16_t* line, int64_t step, int64_t length, int64_t radius) {
    const int64_t count = 2 * radius + 1;
    uint32_t sum = 0;
    for (int64_t i = 0; i < count - 1; ++i) sum += line[i * step];
    for (int64_t i = 0; i + count <= length; ++i) {
        sum += line[(i + count - 1) * step];
        const uint16_t leaving = line[i * step];
        line[i * step] = boxMean(sum, static_cast<uint32_t>(count));
        sum -= leaving;
    }
}

void blurLine(uint16_t* line, int64_t step, int64_t length, int64_t reach) {
    for (int mean = 0; mean < 3; ++mean) {
        const int64_t radius = boxRadius(reach, mean);
        if (radius == 0 || length < 2 * radius + 1) return;
        meanLine(line, step, length, radius);
        length -= 2 * radius;
    }
}

}  // namespace

void boxBlur(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* /*scratch*/) {
    for (int64_t x = 0; x < width; ++x) blurLine(plane + x, width, height, reach);
    for (int64_t y = 0; y < height - 2 * reach; ++y) blurLine(plane + y * width, 1, width, reach);
}

}  // namespace GxFontEffect::kernels::plain
