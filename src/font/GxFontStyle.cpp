#include "font/GxFontStyle.h"

#include <cwchar>

#include "base/GxString.h"

namespace GxFontEffect {

namespace {

struct WeightMarker {
    const wchar_t* marker;
    int weight;
};

constexpr WeightMarker kMedium = {L"-Medium", 500};
constexpr int kMediumAsBold = 700;
constexpr const wchar_t* kFamilyWithMediumAsBold = L"qrn-roboto-light";

bool HasMarker(const GxString& path, const wchar_t* marker) {
    return path.Find(marker) > 0;
}

// Without a copy, which might not be had.
bool Equals(const GxString* name, const wchar_t* wanted) {
    const wchar_t* text = name ? name->GetPointer() : nullptr;
    return text && std::wcscmp(text, wanted) == 0;
}

}  // namespace

GxFontStyle DeriveFontStyle(const GxString& path, const GxString* familyName, int weight) {
    if (HasMarker(path, L"-Italic")) return {weight, true};
    if (HasMarker(path, L"-Thin")) return {100, false};
    if (HasMarker(path, L"-Light")) return {300, false};
    if (HasMarker(path, kMedium.marker)) {
        const bool isBold = Equals(familyName, kFamilyWithMediumAsBold);
        return {isBold ? kMediumAsBold : kMedium.weight, false};
    }
    if (HasMarker(path, L"-Black")) return {900, false};
    if (HasMarker(path, L"-Bold")) return {700, false};
    return {weight, false};
}

}  // namespace GxFontEffect
