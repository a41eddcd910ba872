// A file descriptor that is closed at the end of its scope.
#pragma once

#include <unistd.h>

namespace GxFontEffect {

// Owns the number, which may be negative for none. Not locked.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    const int number_;
};

}  // namespace GxFontEffect
