// The character format of JNI strings, which is not UTF-8.
//
// It differs in two ways. NUL is written in two bytes, C0 80, so that the text may end with a zero
// byte. Characters beyond U+FFFF are written as their two surrogates, three bytes each; some
// runtimes write the four bytes of UTF-8 instead, and both are read here. A surrogate without its
// partner is what Java allows it to be: a character of its own.
//
// Each byte that belongs to no character of the format (a stray or missing continuation, an
// overlong form, a value beyond U+10FFFF) reads as U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace GxFontEffect {

// One wide character per code point. Lone surrogates stay, so that UTF-16 positions that Java
// counted remain true.
std::wstring WideFromModifiedUtf8(std::string_view chars);

// Plain UTF-8. It has no lone surrogates: they become U+FFFD. NUL is a zero byte.
std::string Utf8FromModifiedUtf8(std::string_view chars);

}  // namespace GxFontEffect
