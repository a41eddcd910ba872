#include "SkColorSpace.h"

sk_sp<SkColorSpace> SkColorSpace::MakeSRGB() {
    return sk_make_sp<SkColorSpace>();
}
