#include "SkBitmap.h"

bool SkBitmap::installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes) {
    this->reset();
    if (info.width() < 0 || info.height() < 0) return false;
    if (rowBytes == 0) rowBytes = static_cast<size_t>(info.minRowBytes64());
    if (!info.validRowBytes(rowBytes)) return false;
    fInfo = info;
    fPixels = pixels;
    fRowBytes = rowBytes;
    return true;
}
