// The system's font configuration as it is handed over: families and the fonts in them.
#pragma once

#include <cstdint>

#include "GxExport.h"

namespace GxFontEffect {

class GxString;
class List;

// One font of a family.
struct GxFontEntry {
    GxString* path = nullptr;  // owned; font file
    int32_t ttcIndex = 0;      // font inside a collection file
    int32_t weight = 400;      // 100 to 900
    bool italic = false;
    GxString* fallbackFor = nullptr;  // owned; named family that this font only backs up
};

// Fonts of one design, in the order of preference.
struct GxFontFamily {
    int32_t loaded = 0;  // not 0 once its fonts are with the font manager
    uint32_t localeListId =
        0;                  // of the languages it serves (minikin::registerLocaleList); 0 for none
    int32_t variant = 0;    // a minikin::FamilyVariant: 0 default, 1 compact, 2 elegant
    List* fonts = nullptr;  // owned; of owned GxFontEntry
};

// Delete a record with all it owns. Null is ignored.
GXTEXT_API void DeleteFontEntry(GxFontEntry* entry);
GXTEXT_API void DeleteFontFamily(GxFontFamily* family);

}  // namespace GxFontEffect
