#include "base/GxString.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "base/NativeError.h"
#include "base/Unicode.h"

namespace GxFontEffect {

class GxStringImpl {
public:
    std::wstring_view view() const {
        return {buffer ? buffer.get() : L"", static_cast<size_t>(length)};
    }

    std::unique_ptr<wchar_t[]> buffer;  // NUL-terminated; null means no text
    int length = 0;                     // characters
    bool counted = false;               // text of Set(text, length)
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
    kSiteSetLength = 47,
};

bool Fail(GxErrorCode code, Site site) {
    return ReportNativeError(kTag, code, site);
}

int FailNumber(GxErrorCode code, Site site) {
    Fail(code, site);
    return -1;
}

using ImplPointer = std::unique_ptr<GxStringImpl>;

// Zeroed room for `length` characters and the terminator; null when it cannot be had.
ImplPointer AllocateText(size_t length) {
    if (length >= static_cast<size_t>(INT_MAX)) return nullptr;
    ImplPointer text(new (std::nothrow) GxStringImpl);
    if (text) text->buffer.reset(new (std::nothrow) wchar_t[length + 1]());
    if (!text || !text->buffer) return nullptr;
    text->length = static_cast<int>(length);
    return text;
}

ImplPointer CopyText(std::wstring_view text, bool counted) {
    ImplPointer copy = AllocateText(text.size());
    if (!copy) return copy;
    std::wmemcpy(copy->buffer.get(), text.data(), text.size());
    copy->counted = counted;
    return copy;
}

ImplPointer CopyTerminated(const wchar_t* text) {
    return CopyText(text, false);
}

// A text has never more characters than its UTF-8 has bytes. It ends where they are malformed.
ImplPointer WidenText(const char* text) {
    std::string_view bytes(text);
    ImplPointer wide = AllocateText(bytes.size());
    if (!wide) return wide;
    wide->length = 0;
    while (!bytes.empty()) {
        const Utf8Sequence next = ReadUtf8(bytes);
        if (next.length == 0 || IsSurrogate(next.codePoint)) break;
        wide->buffer[static_cast<size_t>(wide->length++)] = static_cast<wchar_t>(next.codePoint);
        bytes.remove_prefix(static_cast<size_t>(next.length));
    }
    return wide;
}

// Room for `length` characters holding the first of `text`, NUL from its end on.
ImplPointer CopyPadded(std::wstring_view text, size_t length, bool counted) {
    ImplPointer copy = AllocateText(length);
    if (!copy) return copy;
    const std::wstring_view part = text.substr(0, length);
    std::wmemcpy(copy->buffer.get(), part.data(), part.size());
    copy->length = static_cast<int>(part.size());
    copy->counted = counted;
    return copy;
}

ImplPointer Join(const GxStringImpl& string, int pos, std::wstring_view text) {
    const std::wstring_view old = string.view();
    const size_t before = static_cast<size_t>(pos);
    ImplPointer joined = AllocateText(old.size() + text.size());
    if (!joined) return joined;
    wchar_t* out = joined->buffer.get();
    std::wmemcpy(out, old.data(), before);
    std::wmemcpy(out + before, text.data(), text.size());
    std::wmemcpy(out + before + text.size(), old.data() + before, old.size() - before);
    joined->counted = string.counted;
    return joined;
}

bool MayConstruct(const ImplPointer& impl, bool hasSource) {
    if (impl) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructAgain);
    return hasSource || Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructNull);
}

ImplPointer NoText() {
    return ImplPointer(new (std::nothrow) GxStringImpl);
}

bool ConstructWith(ImplPointer& impl, ImplPointer made) {
    if (!made) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructMemory);
    impl = std::move(made);
    return true;
}

// The string gets what was made for it, if that could be made.
bool Replace(ImplPointer& impl, ImplPointer made, Site site) {
    if (!made) return Fail(GXE_ERROR_INVALID_ARGUMENT, site);
    impl = std::move(made);
    return true;
}

bool AppendTo(ImplPointer& impl, std::wstring_view text) {
    if (static_cast<size_t>(impl->length) + text.size() > INT_MAX) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteAppendLength);
    }
    return Replace(impl, Join(*impl, impl->length, text), kSiteAppendMemory);
}

bool InsertInto(ImplPointer& impl, std::wstring_view text, int pos) {
    if (pos < 0 || pos > impl->length) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteInsertRange);
    if (text.empty()) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteInsertEmpty);
    if (static_cast<size_t>(impl->length) + text.size() > INT_MAX) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteInsertLength);
    }
    return Replace(impl, Join(*impl, pos, text), kSiteInsertMemory);
}

int FindIn(std::wstring_view text, std::wstring_view pattern) {
    const size_t pos = text.find(pattern);
    // Strictly below the last position, which is deliberately left out: the style markers in font
    // names rely on it.
    const bool found = pattern.size() < text.size() && pos < text.size() - pattern.size();
    return found ? static_cast<int>(pos) : -1;
}

int ReverseFindIn(std::wstring_view text, std::wstring_view pattern) {
    const size_t pos = text.rfind(pattern);
    return pos != std::wstring_view::npos ? static_cast<int>(pos) : -1;
}

int SignOf(int order) {
    return (order > 0) - (order < 0);
}

bool MayCompare(const ImplPointer& impl, bool hasOther) {
    if (!impl) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteCompareUnconstructed);
    return hasOther || Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareNull);
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
// by. Counted text has positions of its own, of a Java text say, and must keep them.
bool TakesTwoUtf16Units(uint32_t c, bool counted) {
    return c >= (counted ? 0x10000u : 0xFFFFu) && c <= kLastCodePoint;
}

int64_t Utf16Units(const GxStringImpl& string) {
    int64_t units = 1;
    for (const wchar_t c : string.view()) {
        units += TakesTwoUtf16Units(CodePoint(c), string.counted) ? 2 : 1;
    }
    return units;
}

}  // namespace

GxString::GxString() = default;
GxString::~GxString() = default;

bool GxString::Construct() {
    return MayConstruct(impl_, true) && ConstructWith(impl_, NoText());
}

bool GxString::Construct(const wchar_t* text) {
    return MayConstruct(impl_, text) && ConstructWith(impl_, CopyTerminated(text));
}

bool GxString::Construct(const char* text) {
    return MayConstruct(impl_, text) && ConstructWith(impl_, WidenText(text));
}

bool GxString::Construct(const wchar_t* text, int length) {
    if (!MayConstruct(impl_, text)) return false;
    if (length < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructLength);
    const size_t wanted = static_cast<size_t>(length);
    return ConstructWith(impl_, CopyPadded({text, wcsnlen(text, wanted)}, wanted, false));
}

bool GxString::Construct(const GxString* other) {
    if (!MayConstruct(impl_, other && other->impl_)) return false;
    const GxStringImpl* text = TextOf(other);
    return ConstructWith(impl_, text ? CopyText(text->view(), text->counted) : NoText());
}

bool GxString::Construct(const GxString* other, int length) {
    if (!MayConstruct(impl_, other && other->impl_)) return false;
    if (length < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructLength);
    return ConstructWith(impl_, CopyPadded(other->impl_->view(), static_cast<size_t>(length),
                                           other->impl_->counted));
}

bool GxString::Set(const GxString* other) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSetUnconstructed);
    const GxStringImpl* text = TextOf(other);
    return text ? Replace(impl_, CopyText(text->view(), text->counted), kSiteSetMemory) : Clear();
}

bool GxString::Set(const wchar_t* text) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSetUnconstructed);
    return text ? Replace(impl_, CopyTerminated(text), kSiteSetMemory) : Clear();
}

bool GxString::Set(const char* text) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSetUnconstructed);
    return text ? Replace(impl_, WidenText(text), kSiteSetMemory) : Clear();
}

bool GxString::Set(const wchar_t* text, int length) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSetUnconstructed);
    if (length < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSetLength);
    if (!text) return Clear();
    return Replace(impl_, CopyText({text, static_cast<size_t>(length)}, true), kSiteSetMemory);
}

bool GxString::Clear() {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteClearUnconstructed);
    *impl_ = GxStringImpl();
    return true;
}

// Null also for a string without text.
const GxStringImpl* GxString::TextOf(const GxString* string) {
    return string && string->impl_ && string->impl_->buffer ? string->impl_.get() : nullptr;
}

int GxString::GetLength() const {
    if (impl_) return impl_->length;
    return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteLengthUnconstructed);
}

const wchar_t* GxString::GetPointer() const {
    if (impl_) return impl_->buffer.get();
    Fail(GXE_ERROR_NOT_CONSTRUCTED, kSitePointerUnconstructed);
    return nullptr;
}

bool GxString::GetChar(int index, wchar_t* out) const {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteCharUnconstructed);
    if (index < 0 || index >= impl_->length) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteCharRange);
    if (!out) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteCharNull);
    *out = impl_->buffer[static_cast<size_t>(index)];
    return true;
}

bool GxString::Append(const GxString* other) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteAppendUnconstructed);
    const GxStringImpl* text = TextOf(other);
    return !text || AppendTo(impl_, text->view());
}

bool GxString::Append(const wchar_t* text) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteAppendUnconstructed);
    return !text || AppendTo(impl_, text);
}

bool GxString::Append(const char* text) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteAppendUnconstructed);
    if (!text) return true;
    const ImplPointer wide = WidenText(text);
    return wide ? AppendTo(impl_, wide->view())
                : Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteAppendWiden);
}

bool GxString::Insert(const wchar_t* text, int pos) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteInsertUnconstructed);
    return !text || InsertInto(impl_, text, pos);
}

bool GxString::Insert(const GxString* other, int pos) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteInsertUnconstructed);
    const GxStringImpl* text = TextOf(other);
    return !text || InsertInto(impl_, text->view(), pos);
}

bool GxString::Remove(int pos, int count) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteRemoveUnconstructed);
    const int length = impl_->length;
    if (pos < 0 || pos >= length) return Fail(GXE_ERROR_OUT_OF_RANGE, kSiteRemoveRange);
    if (count < 0 || count > length - pos) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteRemoveCount);
    }
    wchar_t* text = impl_->buffer.get();
    // With the terminator.
    std::wmemmove(text + pos, text + pos + count, static_cast<size_t>(length - pos - count) + 1);
    impl_->length = length - count;
    return true;
}

bool GxString::SetSubstring(const GxString* source, int start, int end) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteSubstringUnconstructed);
    const GxStringImpl* text = TextOf(source);
    if (!text) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSubstringSource);
    // An empty range and the terminator itself are inside the buffer.
    const int64_t count = int64_t{end} - start + 1;
    if (start < 0 || end > text->length || count < 0) {
        return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteSubstringRange);
    }
    const std::wstring_view rest =
        text->view().substr(static_cast<size_t>(std::min(start, text->length)));
    return Replace(impl_, CopyPadded(rest, static_cast<size_t>(count), text->counted),
                   kSiteSubstringMemory);
}

int GxString::CompareTo(const GxString* other) const {
    if (!MayCompare(impl_, other && other->impl_)) return -1;
    const int otherLength = other->impl_->length;
    if (impl_->length != otherLength) return impl_->length > otherLength ? 1 : -1;
    return SignOf(impl_->view().compare(other->impl_->view()));
}

int GxString::CompareTo(const char* text) const {
    if (impl_ && text) {
        const size_t length = static_cast<size_t>(impl_->length);
        const size_t bytes = std::strlen(text);
        if (length != bytes) return length > bytes ? 1 : -1;
    }
    return CompareTo(text, impl_ ? impl_->length : 0);
}

int GxString::CompareTo(const char* text, int count) const {
    if (!MayCompare(impl_, text)) return -1;
    if (count < 0) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareCount);
    const ImplPointer wide = WidenText(text);
    if (!wide) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteCompareWiden);
    const size_t compared = static_cast<size_t>(count);
    return SignOf(impl_->view().substr(0, compared).compare(wide->view().substr(0, compared)));
}

int GxString::Find(const wchar_t* pattern) const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteFindUnconstructed);
    if (!pattern) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteFindNull);
    return FindIn(impl_->view(), pattern);
}

int GxString::Find(const char* pattern) const {
    if (!impl_ || !pattern) return Find(static_cast<const wchar_t*>(nullptr));
    const ImplPointer wide = WidenText(pattern);
    if (wide) return FindIn(impl_->view(), wide->view());
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteFindWiden);
}

int GxString::ReverseFind(const wchar_t* pattern) const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteReverseFindUnconstructed);
    if (!pattern) return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteReverseFindNull);
    return ReverseFindIn(impl_->view(), pattern);
}

int GxString::ReverseFind(const char* pattern) const {
    if (!impl_ || !pattern) return ReverseFind(static_cast<const wchar_t*>(nullptr));
    const ImplPointer wide = WidenText(pattern);
    if (wide) return ReverseFindIn(impl_->view(), wide->view());
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteReverseFindWiden);
}

int GxString::GetUTF8Size() const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf8SizeUnconstructed);
    int64_t size = 1;
    for (const wchar_t c : impl_->view()) size += Utf8Units(CodePoint(c));
    if (size <= INT_MAX) return static_cast<int>(size);
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf8SizeLength);
}

bool GxString::GetUTF8(char* dst, int size) const {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf8Unconstructed);
    if (!dst || size < 1) return Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf8Argument);
    char* const end = dst + size;
    for (const wchar_t c : impl_->view()) {
        char bytes[kMaxUtf8Length];
        if (!IsScalarValue(CodePoint(c))) break;
        const int length = WriteUtf8(CodePoint(c), bytes);
        if (length >= end - dst) break;
        dst = std::copy_n(bytes, length, dst);
    }
    std::fill(dst, end, '\0');
    return true;
}

int GxString::GetUTF16Size() const {
    if (!impl_) return FailNumber(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf16SizeUnconstructed);
    const int64_t units = Utf16Units(*impl_);
    if (units <= INT_MAX) return static_cast<int>(units);
    return FailNumber(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf16SizeLength);
}

uint16_t* GxString::GetUTF16() const {
    if (!impl_) {
        Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteUtf16Unconstructed);
        return nullptr;
    }
    uint16_t* units = new (std::nothrow) uint16_t[static_cast<size_t>(Utf16Units(*impl_))];
    if (!units) {
        Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteUtf16Memory);
        return nullptr;
    }
    uint16_t* out = units;
    for (const wchar_t wide : impl_->view()) {
        const uint32_t c = CodePoint(wide);
        if (TakesTwoUtf16Units(c, impl_->counted)) {
            *out++ = static_cast<uint16_t>(0xD800 | (((c - 0x10000) >> 10) & 0x3FF));
            *out++ = static_cast<uint16_t>(0xDC00 | (c & 0x3FF));
        } else {
            *out++ = c > kLastCodePoint ? 0xFFFD : static_cast<uint16_t>(c);
        }
    }
    *out = 0;
    return units;
}

}  // namespace GxFontEffect
