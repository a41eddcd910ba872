#include "base/GxString.h"

#include <locale.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <type_traits>
#include <utility>

#include "base/NativeError.h"

namespace GxFontEffect {

using WideBuffer = std::unique_ptr<wchar_t[]>;

// A null buffer means no text. Lengths are never stored: wcslen of the buffer is the length, so it
// fits an int (AllocateText refuses more).
class GxStringImpl {
public:
    const wchar_t* text() const { return buffer ? buffer.get() : L""; }
    int length() const { return static_cast<int>(std::wcslen(text())); }

    WideBuffer buffer;
};

namespace {

constexpr const char* kTag = "GxString";

// One number per failing check; never renumber.
enum Site : int {
    kSiteConstructAgain = 1,
    kSiteConstructNull = 2,
    kSiteConstructLength = 3,
    kSiteConstructMemory = 4,
    kSiteSetUnconstructed = 5,
    kSiteSetMemory = 6,
    kSiteClearUnconstructed = 7,
    kSiteLengthUnconstructed = 8,
    kSitePointerUnconstructed = 9,
    kSiteCharUnconstructed = 10,
    kSiteCharRange = 11,
    kSiteCharNull = 12,
    kSiteAppendUnconstructed = 13,
    kSiteAppendLength = 14,
    kSiteAppendMemory = 15,
    kSiteAppendWiden = 16,
    kSiteInsertUnconstructed = 17,
    kSiteInsertRange = 18,
    kSiteInsertEmpty = 19,
    kSiteInsertLength = 20,
    kSiteInsertMemory = 21,
    kSiteRemoveUnconstructed = 22,
    kSiteRemoveRange = 23,
    kSiteRemoveCount = 24,
    kSiteSubstringUnconstructed = 25,
    kSiteSubstringSource = 26,
    kSiteSubstringRange = 27,
    kSiteSubstringMemory = 28,
    kSiteCompareUnconstructed = 29,
    kSiteCompareNull = 30,
    kSiteCompareCount = 31,
    kSiteCompareWiden = 32,
    kSiteFindUnconstructed = 33,
    kSiteFindNull = 34,
    kSiteFindWiden = 35,
    kSiteReverseFindUnconstructed = 36,
    kSiteReverseFindNull = 37,
    kSiteReverseFindWiden = 38,
    kSiteUtf8SizeUnconstructed = 39,
    kSiteUtf8SizeLength = 40,
    kSiteUtf8Unconstructed = 41,
    kSiteUtf8Argument = 42,
    kSiteUtf16SizeUnconstructed = 43,
    kSiteUtf16SizeLength = 44,
    kSiteUtf16Unconstructed = 45,
    kSiteUtf16Memory = 46,
};

bool Fail(GxErrorCode code, Site site) {
    return ReportNativeError(kTag, code, site);
}

int FailNumber(GxErrorCode code, Site site) {
    Fail(code, site);
    return -1;
}

// The C library converts in the locale of the thread; a process that never called setlocale runs in
// "C", where every byte above 0x7F is malformed.
class Utf8LocaleScope {
public:
    Utf8LocaleScope() {
        static const locale_t utf8 = Open();
        if (utf8) previous_ = uselocale(utf8);
    }
    ~Utf8LocaleScope() {
        if (previous_) uselocale(previous_);
    }
    Utf8LocaleScope(const Utf8LocaleScope&) = delete;
    Utf8LocaleScope& operator=(const Utf8LocaleScope&) = delete;

private:
    // Lives as long as the process: threads may still convert while it ends.
    static locale_t Open() {
        for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8"}) {
            if (locale_t opened = newlocale(LC_CTYPE_MASK, name, locale_t{})) return opened;
        }
        return locale_t{};
    }

    locale_t previous_{};
};

// Zeroed room for `length` characters and the terminator; null when it cannot be had.
WideBuffer AllocateText(size_t length) {
    if (length >= static_cast<size_t>(INT_MAX)) return nullptr;
    return WideBuffer(new (std::nothrow) wchar_t[length + 1]());
}

WideBuffer CopyText(const wchar_t* text, size_t length) {
    WideBuffer copy = AllocateText(length);
    if (copy) std::wmemcpy(copy.get(), text, length);
    return copy;
}

WideBuffer CopyText(const wchar_t* text) {
    return CopyText(text, std::wcslen(text));
}

// A UTF-8 text never has more characters than bytes. Where the bytes are malformed mbstowcs stops
// and the zeroed rest of the buffer ends the text.
WideBuffer WidenText(const char* text) {
    const size_t bytes = std::strlen(text);
    WideBuffer wide = AllocateText(bytes);
    if (!wide) return wide;
    const Utf8LocaleScope scope;
    std::mbstowcs(wide.get(), text, bytes + 1);
    wide[bytes] = L'\0';
    return wide;
}

using ImplPointer = std::unique_ptr<GxStringImpl>;

bool MayConstruct(const ImplPointer& impl, bool hasSource) {
    if (impl) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructAgain);
    return hasSource || Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructNull);
}

// `ready` is false when the buffer that should be there could not be had.
bool ConstructWith(ImplPointer& impl, WideBuffer buffer, bool ready) {
    if (ready) impl.reset(new (std::nothrow) GxStringImpl);
    if (!impl) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructMemory);
    impl->buffer = std::move(buffer);
    return true;
}

bool ConstructWith(ImplPointer& impl, WideBuffer buffer) {
    const bool ready = buffer != nullptr;
    return ConstructWith(impl, std::move(buffer), ready);
}

// What `convert` makes of the text becomes the string's text; null empties it.
template <typename Char>
bool Replace(const ImplPointer& impl, const Char* text, WideBuffer (*convert)(const Char*)) {
    if (!impl) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSetUnconstructed);
    // Converted before the old text goes: the source may be a part of it.
    WideBuffer copy;
    if (text) copy = convert(text);
    if (text && !copy) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSetMemory);
    impl->buffer.swap(copy);
    return true;
}

bool MayCompare(const ImplPointer& impl, bool hasOther) {
    if (!impl) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteCompareUnconstructed);
    return hasOther || Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareNull);
}

// wcsncpy, but in time proportional to the text when it is shorter than `length`: the rest of the
// buffer is zero already.
WideBuffer CopyPadded(const wchar_t* text, int length) {
    const size_t wanted = static_cast<size_t>(length);
    WideBuffer copy = AllocateText(wanted);
    if (copy) std::wmemcpy(copy.get(), text, wcsnlen(text, wanted));
    return copy;
}

constexpr uint32_t CodePoint(wchar_t c) {
    return std::make_unsigned_t<wchar_t>(c);
}

int Utf8Units(uint32_t c) {
    if (c < 0x80) return 1;
    if (c < 0x800) return 2;
    if (c < 0x10000) return 3;
    if (c < 0x200000) return 4;
    return c < 0x4000000 ? 5 : 6;
}

// U+FFFF counts as two units: the boundary is part of the format that callers size their buffers
// by.
bool TakesTwoUtf16Units(uint32_t c) {
    return c >= 0xFFFF && c <= 0x10FFFF;
}

int64_t Utf16Units(const wchar_t* text) {
    int64_t units = 1;
    for (; *text; text++) units += TakesTwoUtf16Units(CodePoint(*text)) ? 2 : 1;
    return units;
}

}  // namespace

GxString::GxString() = default;
GxString::~GxString() = default;

bool GxString::Construct() {
    return MayConstruct(impl_, true) && ConstructWith(impl_, nullptr, true);
}

bool GxString::Construct(const wchar_t* text) {
    return MayConstruct(impl_, text) && ConstructWith(impl_, CopyText(text));
}

bool GxString::Construct(const char* text) {
    return MayConstruct(impl_, text) && ConstructWith(impl_, WidenText(text));
}

bool GxString::Construct(const wchar_t* text, int length) {
    if (!MayConstruct(impl_, text)) return false;
    if (length < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructLength);
    return ConstructWith(impl_, CopyPadded(text, length));
}

bool GxString::Construct(const GxString* other) {
    if (!MayConstruct(impl_, other && other->impl_)) return false;
    const wchar_t* text = other->impl_->buffer.get();
    return text ? ConstructWith(impl_, CopyText(text)) : ConstructWith(impl_, nullptr, true);
}

bool GxString::Construct(const GxString* other, int length) {
    return Construct(other && other->impl_ ? other->impl_->text() : nullptr, length);
}

bool GxString::Set(const GxString* other) {
    return Set(TextOf(other));
}
bool GxString::Set(const wchar_t* text) {
    return Replace<wchar_t>(impl_, text, CopyText);
}
bool GxString::Set(const char* text) {
    return Replace<char>(impl_, text, WidenText);
}

bool GxString::Clear() {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteClearUnconstructed);
    impl_->buffer.reset();
    return true;
}

// Null also for a string without text.
const wchar_t* GxString::TextOf(const GxString* string) {
    return string && string->impl_ ? string->impl_->buffer.get() : nullptr;
}

int GxString::GetLength() const {
    if (impl_) return impl_->length();
    return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteLengthUnconstructed);
}

const wchar_t* GxString::GetPointer() const {
    if (impl_) return impl_->buffer.get();
    Fail(GXE_ERROR_NOT_CONSTRUCTED, kSitePointerUnconstructed);
    return nullptr;
}

bool GxString::GetChar(int index, wchar_t* out) const {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteCharUnconstructed);
    if (index < 0 || index >= impl_->length()) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteCharRange);
    if (!out) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteCharNull);
    *out = impl_->buffer[index];
    return true;
}

bool GxString::Append(const GxString* other) {
    return Append(TextOf(other));
}

bool GxString::Append(const wchar_t* text) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteAppendUnconstructed);
    if (!text) return true;
    const size_t length = static_cast<size_t>(impl_->length());
    const size_t added = std::wcslen(text);
    if (length + added > INT_MAX) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteAppendLength);
    WideBuffer joined = AllocateText(length + added);
    if (!joined) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteAppendMemory);
    std::wmemcpy(joined.get(), impl_->text(), length);
    std::wmemcpy(joined.get() + length, text, added);
    impl_->buffer = std::move(joined);
    return true;
}

bool GxString::Append(const char* text) {
    if (!impl_ || !text) return Append(static_cast<const wchar_t*>(nullptr));
    const WideBuffer wide = WidenText(text);
    return wide ? Append(wide.get()) : Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteAppendWiden);
}

bool GxString::Insert(const wchar_t* text, int pos) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteInsertUnconstructed);
    if (!text) return true;
    const int length = impl_->length();
    if (pos < 0 || pos > length) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteInsertRange);
    const size_t added = std::wcslen(text);
    if (added == 0) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteInsertEmpty);
    if (static_cast<size_t>(length) + added > INT_MAX) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteInsertLength);
    }
    WideBuffer joined = AllocateText(static_cast<size_t>(length) + added);
    if (!joined) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteInsertMemory);
    const wchar_t* old = impl_->text();
    std::wmemcpy(joined.get(), old, static_cast<size_t>(pos));
    std::wmemcpy(joined.get() + pos, text, added);
    std::wmemcpy(joined.get() + pos + added, old + pos, static_cast<size_t>(length - pos));
    impl_->buffer = std::move(joined);
    return true;
}

bool GxString::Insert(const GxString* other, int pos) {
    return Insert(TextOf(other), pos);
}

bool GxString::Remove(int pos, int count) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteRemoveUnconstructed);
    const int length = impl_->length();
    if (pos < 0 || pos >= length) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteRemoveRange);
    if (count < 0 || count > length - pos) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteRemoveCount);
    }
    wchar_t* text = impl_->buffer.get();
    const int tail = length - pos - count;
    std::wmemmove(text + pos, text + pos + count, static_cast<size_t>(tail));
    text[length - count] = L'\0';
    return true;
}

bool GxString::SetSubstring(const GxString* source, int start, int end) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSubstringUnconstructed);
    const wchar_t* text = TextOf(source);
    if (!text) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSubstringSource);
    // An empty range and the terminator itself are inside the buffer.
    if (start < 0 || end > source->impl_->length() || start > static_cast<int64_t>(end) + 1) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSubstringRange);
    }
    WideBuffer part = CopyText(text + start, static_cast<size_t>(int64_t{end} - start + 1));
    if (!part) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSubstringMemory);
    impl_->buffer = std::move(part);
    return true;
}

int GxString::CompareTo(const GxString* other) const {
    if (!MayCompare(impl_, other && other->impl_)) return -1;
    const int length = impl_->length();
    const int otherLength = other->impl_->length();
    if (length != otherLength) return length > otherLength ? 1 : -1;
    return std::wcsncmp(impl_->text(), other->impl_->text(), static_cast<size_t>(length));
}

int GxString::CompareTo(const char* text) const {
    if (impl_ && text) {
        const size_t length = static_cast<size_t>(impl_->length());
        const size_t bytes = std::strlen(text);
        if (length != bytes) return length > bytes ? 1 : -1;
    }
    return CompareTo(text, impl_ ? impl_->length() : 0);
}

int GxString::CompareTo(const char* text, int count) const {
    if (!MayCompare(impl_, text)) return -1;
    if (count < 0) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareCount);
    const WideBuffer wide = WidenText(text);
    if (!wide) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareWiden);
    return std::wcsncmp(impl_->text(), wide.get(), static_cast<size_t>(count));
}

int GxString::Find(const wchar_t* pattern) const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteFindUnconstructed);
    if (!pattern) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteFindNull);
    const size_t length = static_cast<size_t>(impl_->length());
    const size_t wanted = std::wcslen(pattern);
    const wchar_t* text = impl_->text();
    // Strictly below length - wanted: the last position is deliberately left out, the style markers
    // in font names rely on it.
    for (size_t pos = 0; wanted < length && pos < length - wanted; pos++) {
        if (std::wmemcmp(text + pos, pattern, wanted) == 0) return static_cast<int>(pos);
    }
    return -1;
}

int GxString::Find(const char* pattern) const {
    if (!impl_ || !pattern) return Find(static_cast<const wchar_t*>(nullptr));
    const WideBuffer wide = WidenText(pattern);
    if (wide) return Find(wide.get());
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteFindWiden);
}

int GxString::ReverseFind(const wchar_t* pattern) const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteReverseFindUnconstructed);
    if (!pattern) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteReverseFindNull);
    const size_t wanted = std::wcslen(pattern);
    const wchar_t* text = impl_->text();
    const size_t length = static_cast<size_t>(impl_->length());
    if (wanted > length) return -1;
    for (size_t pos = length - wanted + 1; pos-- > 0;) {
        if (std::wmemcmp(text + pos, pattern, wanted) == 0) return static_cast<int>(pos);
    }
    return -1;
}

int GxString::ReverseFind(const char* pattern) const {
    if (!impl_ || !pattern) return ReverseFind(static_cast<const wchar_t*>(nullptr));
    const WideBuffer wide = WidenText(pattern);
    if (wide) return ReverseFind(wide.get());
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteReverseFindWiden);
}

int GxString::GetUTF8Size() const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf8SizeUnconstructed);
    int64_t size = 1;
    for (const wchar_t* c = impl_->text(); *c; c++) size += Utf8Units(CodePoint(*c));
    if (size <= INT_MAX) return static_cast<int>(size);
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf8SizeLength);
}

bool GxString::GetUTF8(char* dst, int size) const {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf8Unconstructed);
    if (!dst || size < 1) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf8Argument);
    // wcstombs does not terminate what it cannot finish.
    std::memset(dst, 0, static_cast<size_t>(size));
    const Utf8LocaleScope scope;
    std::wcstombs(dst, impl_->text(), static_cast<size_t>(size) - 1);
    dst[size - 1] = '\0';
    return true;
}

int GxString::GetUTF16Size() const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf16SizeUnconstructed);
    const int64_t units = Utf16Units(impl_->text());
    if (units <= INT_MAX) return static_cast<int>(units);
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf16SizeLength);
}

uint16_t* GxString::GetUTF16() const {
    if (!impl_) {
        Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf16Unconstructed);
        return nullptr;
    }
    const wchar_t* text = impl_->text();
    uint16_t* units = new (std::nothrow) uint16_t[static_cast<size_t>(Utf16Units(text))];
    if (!units) {
        Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf16Memory);
        return nullptr;
    }
    uint16_t* out = units;
    for (; *text; text++) {
        const uint32_t c = CodePoint(*text);
        if (TakesTwoUtf16Units(c)) {
            *out++ = static_cast<uint16_t>(0xD800 | (((c - 0x10000) >> 10) & 0x3FF));
            *out++ = static_cast<uint16_t>(0xDC00 | (c & 0x3FF));
        } else {
            *out++ = c > 0x10FFFF ? 0xFFFD : static_cast<uint16_t>(c);
        }
    }
    *out = 0;
    return units;
}

}  // namespace GxFontEffect
