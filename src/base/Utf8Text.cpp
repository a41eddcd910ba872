#include "base/Utf8Text.h"

#include <climits>
#include <cstring>
#include <new>

#include "base/GxString.h"
#include "base/NativeError.h"

namespace GxFontEffect {

namespace {
constexpr int kSiteMemory = 1;
}  // namespace

Utf8Text::Utf8Text(const GxString* string) {
    const int size = string ? string->GetUTF8Size() : -1;
    if (size < 1) return;
    converted_.reset(new (std::nothrow) char[static_cast<size_t>(size)]);
    if (!converted_) {
        ReportNativeError("GxString", GXE_ERROR_INVALID_ARGUMENT, kSiteMemory);
    } else if (string->GetUTF8(converted_.get(), size)) {
        text_ = converted_.get();
        size_ = size;
    }
}

Utf8Text::Utf8Text(const char* text) {
    const size_t length = text ? std::strlen(text) : INT_MAX;
    if (length >= INT_MAX) return;
    text_ = text;
    size_ = static_cast<int>(length) + 1;
}

}  // namespace GxFontEffect
