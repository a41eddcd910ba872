// Weight, width and slant of a font.
#pragma once

class SkFontStyle {
public:
    enum Weight {
        kInvisible_Weight = 0,
        kThin_Weight = 100,
        kExtraLight_Weight = 200,
        kLight_Weight = 300,
        kNormal_Weight = 400,
        kMedium_Weight = 500,
        kSemiBold_Weight = 600,
        kBold_Weight = 700,
        kExtraBold_Weight = 800,
        kBlack_Weight = 900,
        kExtraBlack_Weight = 1000,
    };
    enum Width {
        kUltraCondensed_Width = 1,
        kNormal_Width = 5,
        kUltraExpanded_Width = 9,
    };
    enum Slant {
        kUpright_Slant,
        kItalic_Slant,
        kOblique_Slant,
    };

    // The weight is clamped to 0..1000, the width to 1..9.
    constexpr SkFontStyle(int weight, int width, Slant slant)
        : fWeight(clamp(weight, kInvisible_Weight, kExtraBlack_Weight)),
          fWidth(clamp(width, kUltraCondensed_Width, kUltraExpanded_Width)),
          fSlant(slant) {}
    constexpr SkFontStyle() : SkFontStyle(kNormal_Weight, kNormal_Width, kUpright_Slant) {}

    int weight() const { return fWeight; }
    int width() const { return fWidth; }
    Slant slant() const { return fSlant; }

    bool operator==(const SkFontStyle& other) const {
        return fWeight == other.fWeight && fWidth == other.fWidth && fSlant == other.fSlant;
    }

private:
    static constexpr int clamp(int value, int low, int high) {
        if (value < low) return low;
        return value > high ? high : value;
    }

    int fWeight;
    int fWidth;
    Slant fSlant;
};
