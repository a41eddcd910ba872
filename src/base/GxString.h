// The library's string: file names, font names and text.
#pragma once

#include <cstdint>
#include <memory>

#include "GxExport.h"

namespace GxFontEffect {

class GxStringImpl;

// One owned, NUL-terminated buffer of wide characters, one code point each, with conversions from
// UTF-8 and to UTF-8 and UTF-16.
//
//     GxString name;
//     if (!name.Construct("Title")) return false;
//     name.Append(L" \u2014 2");
//     std::string utf8(name.GetUTF8Size(), '\0');
//     name.GetUTF8(utf8.data(), static_cast<int>(utf8.size()));
//
// Built in two steps: until a Construct succeeds every other operation fails with code 8. A
// constructed string may have no text at all (after Construct() or Clear()); it then measures as
// empty.
//
// A failure returns false (or the value named below), logs one line under the tag "GxString",
// records a code and leaves the string as it was. When memory runs out the code is 7. Nothing
// throws.
//
// Arguments are borrowed and may be the string itself or its own characters. Set, Append and Insert
// take a GxString that is unconstructed or has no text for null. Narrow text is UTF-8, the same in
// every locale and on every C library: what is not the shortest form of a code point below U+110000
// other than a surrogate ends the text there, silently.
//
// Text ends at its first NUL. Only Set(text, length) takes it as it is counted: in such a text NUL
// is a character like any other, and UTF-16 gives back the very units of a text that came from
// there. Copies and parts of it are counted as well; it stays so until another Set or Clear.
//
// Lengths and positions count wide characters. Not locked: one string is used from one thread at a
// time.
class GXTEXT_API GxString {
public:
    GxString();
    ~GxString();
    GxString(const GxString&) = delete;
    GxString& operator=(const GxString&) = delete;

    // Code 4 when already constructed, code 7 when a text is null or `length` negative; the string
    // is then still unconstructed. A constructed `other` without text gives a string without text.
    bool Construct();
    bool Construct(const wchar_t* text);
    bool Construct(const char* text);
    bool Construct(const GxString* other);
    // A buffer of `length` + 1 characters: the first `length` of the text, padded with NUL when it
    // is shorter.
    bool Construct(const wchar_t* text, int length);
    bool Construct(const GxString* other, int length);

    // Replaces the text; null leaves the string without text and returns true.
    bool Set(const GxString* other);
    bool Set(const wchar_t* text);
    bool Set(const char* text);
    // Exactly `length` characters, whatever they are; a negative length is code 7.
    bool Set(const wchar_t* text, int length);
    // Leaves the string without text.
    bool Clear();

    // -1 when unconstructed.
    int GetLength() const;
    // The characters, valid until the next change; null when there is no text.
    const wchar_t* GetPointer() const;
    // Code 3 unless 0 <= index < length, code 7 when `out` is null.
    bool GetChar(int index, wchar_t* out) const;

    // Null adds nothing and returns true. Code 7 when the sum of the lengths passes 2^31 - 1.
    bool Append(const GxString* other);
    bool Append(const wchar_t* text);
    bool Append(const char* text);

    // Puts the text before the character at `pos`. Null returns true; code 3 unless 0 <= pos <=
    // length; an empty text is code 7.
    bool Insert(const wchar_t* text, int pos);
    bool Insert(const GxString* other, int pos);

    // Code 3 unless 0 <= pos < length; code 7 when `count` is negative or runs past the end. The
    // buffer stays where it is.
    bool Remove(int pos, int count);

    // Replaces the text by the characters `start` to `end` of `source`, both inclusive. Code 7 when
    // `source` is null, unconstructed or without text, or the range leaves its buffer.
    bool SetSubstring(const GxString* source, int start, int end);

    // Length decides before content: 1 when this string is longer, -1 when it is shorter (so "b"
    // sorts before "ab"), otherwise the sign of the first difference. The narrow form measures
    // `text` in bytes. Null is code 7 and -1.
    int CompareTo(const GxString* other) const;
    int CompareTo(const char* text) const;
    // Compares the first `count` characters, whatever the lengths. A negative count is code 7 and
    // -1.
    int CompareTo(const char* text, int count) const;

    // Position of the first occurrence, or -1. A pattern that ends the string is not found unless
    // it also occurs earlier: the last possible position is never looked at. Null is code 7 and -1.
    int Find(const wchar_t* pattern) const;
    int Find(const char* pattern) const;
    // Position of the last occurrence, or -1, all positions included.
    int ReverseFind(const wchar_t* pattern) const;
    int ReverseFind(const char* pattern) const;

    // Bytes of the text as UTF-8 with its terminator; -1 when unconstructed.
    int GetUTF8Size() const;
    // Writes at most `size` bytes, the last one NUL; the text is cut at a whole character when it
    // does not fit, and at the first character that UTF-8 cannot hold. Code 7 when `dst` is null or
    // size < 1.
    bool GetUTF8(char* dst, int size) const;

    // UTF-16 units of the text with its terminator; -1 when unconstructed.
    int GetUTF16Size() const;
    // A new array of that many units that the caller frees with delete[]; null when unconstructed
    // (code 8) or out of memory. Lone surrogates pass through, characters beyond U+10FFFF become
    // U+FFFD, and U+FFFF takes two units (0xDBFF 0xDFFF), as the callers of this class expect it,
    // except in counted text, where it is itself.
    uint16_t* GetUTF16() const;

private:
    static const GxStringImpl* TextOf(const GxString* string);

    std::unique_ptr<GxStringImpl> impl_;
};

}  // namespace GxFontEffect
