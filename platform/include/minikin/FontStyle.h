// Weight and slant of a font, as asked for or as found in the file.
#pragma once

#include <cstdint>

namespace minikin {

class FontStyle {
public:
    enum class Weight : uint16_t {
        THIN = 100,
        EXTRA_LIGHT = 200,
        LIGHT = 300,
        NORMAL = 400,
        MEDIUM = 500,
        SEMI_BOLD = 600,
        BOLD = 700,
        EXTRA_BOLD = 800,
        BLACK = 900,
        EXTRA_BLACK = 1000,
    };

    enum class Slant : bool {
        ITALIC = true,
        UPRIGHT = false,
    };

    constexpr FontStyle() : FontStyle(Weight::NORMAL, Slant::UPRIGHT) {}
    explicit constexpr FontStyle(Weight weight) : FontStyle(weight, Slant::UPRIGHT) {}
    explicit constexpr FontStyle(Slant slant) : FontStyle(Weight::NORMAL, slant) {}
    constexpr FontStyle(Weight weight, Slant slant)
        : FontStyle(static_cast<uint16_t>(weight), slant) {}
    constexpr FontStyle(uint16_t weight, Slant slant) : mWeight(weight), mSlant(slant) {}

    constexpr uint16_t weight() const { return mWeight; }
    constexpr Slant slant() const { return mSlant; }

    constexpr bool operator==(const FontStyle& other) const {
        return mWeight == other.mWeight && mSlant == other.mSlant;
    }

private:
    uint16_t mWeight;
    Slant mSlant;
};

}  // namespace minikin
