// Layout and drawing of a text under settings that the input chooses.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <string>

#include "hwui/Paint.h"
#include "hwui/Typeface.h"
#include "minikin/Layout.h"

namespace gxfuzz {

// Ends the program with the place, as a finding, when `holds` is false.
void require(bool holds, const char* what);

// Mostly one of the sizes where behaviour changes, or a usual one; sometimes any number of 32 bits.
float chooseSize(FuzzedDataProvider& input);

// A number around 0, around 1, or anything, NaN and infinities included.
float chooseFactor(FuzzedDataProvider& input);

// Settings of every kind, within what keeps one input fast.
android::Paint choosePaint(FuzzedDataProvider& input);

struct Part {
    size_t start;
    size_t count;
    size_t contextStart;
    size_t contextCount;
};

// Lays out part of the text, checks what every layout promises, and draws it onto a small canvas.
void layOutAndDraw(android::Paint& paint, const android::Typeface& typeface,
                   const std::u16string& text, minikin::Bidi bidi, const Part& part, bool onMask);

}  // namespace gxfuzz
