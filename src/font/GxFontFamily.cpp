#include "font/GxFontFamily.h"

#include "base/GxString.h"
#include "base/List.h"

namespace GxFontEffect {

void DeleteFontEntry(GxFontEntry* entry) {
    if (!entry) return;
    delete entry->path;
    delete entry->fallbackFor;
    delete entry;
}

void DeleteFontFamily(GxFontFamily* family) {
    if (!family) return;
    if (family->fonts) {
        for (int i = 0; i < family->fonts->GetCount(); i++) {
            DeleteFontEntry(static_cast<GxFontEntry*>(family->fonts->Get(i)));
        }
        delete family->fonts;
    }
    delete family;
}

}  // namespace GxFontEffect
