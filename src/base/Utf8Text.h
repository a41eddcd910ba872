// Paths and names on their way to the C library and the platform. Internal to the library.
#pragma once

#include <memory>

namespace GxFontEffect {

class GxString;

// A text as NUL-terminated UTF-8. There is none (get() null, size() -1) for null, for an
// unconstructed string (code 8) and when memory runs out (code 7).
class Utf8Text {
public:
    // Converts; a constructed string without text gives an empty one.
    explicit Utf8Text(const GxString* string);
    // Borrows the characters.
    explicit Utf8Text(const char* text);

    const char* get() const { return text_; }
    // Bytes with the terminator.
    int size() const { return size_; }

private:
    std::unique_ptr<char[]> converted_;
    const char* text_ = nullptr;
    int size_ = -1;
};

}  // namespace GxFontEffect
