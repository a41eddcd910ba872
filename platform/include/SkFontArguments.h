// What a typeface is made with beyond its file.
#pragma once

#include <cstdint>

#include "SkScalar.h"

typedef uint32_t SkFourByteTag;

class SkFontArguments {
public:
    // A place in the design space of a variable font. Borrows the coordinates.
    struct VariationPosition {
        struct Coordinate {
            SkFourByteTag axis;
            float value;
        };
        const Coordinate* coordinates = nullptr;
        int coordinateCount = 0;
    };

    SkFontArguments& setVariationDesignPosition(VariationPosition position) {
        fPosition = position;
        return *this;
    }
    VariationPosition getVariationDesignPosition() const { return fPosition; }

private:
    VariationPosition fPosition;
};
