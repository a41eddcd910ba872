// Colour spaces. Only sRGB exists here: pixels are never converted.
#pragma once

#include "SkRefCnt.h"

class SkColorSpace : public SkRefCnt {
public:
    static sk_sp<SkColorSpace> MakeSRGB();
    bool isSRGB() const { return true; }
};
