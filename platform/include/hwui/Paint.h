// A drawing paint with the font and the text settings beside it.
#pragma once

#include <SkFont.h>
#include <SkPaint.h>
#include <cutils/compiler.h>

#include <cstdint>
#include <string>

#include "minikin/FamilyVariant.h"

namespace android {

struct Typeface;

class ANDROID_API Paint : public SkPaint {
public:
    // Text is jagged until anti-aliasing is switched on: the font starts at Edging::kAlias.
    Paint();
    Paint(const Paint& paint) = default;
    Paint(const SkPaint& paint);  // NOLINT(google-explicit-constructor)
    ~Paint() = default;

    Paint& operator=(const Paint& other) = default;

    friend bool operator==(const Paint& a, const Paint& b) = default;

    SkFont& getSkFont() { return mFont; }
    const SkFont& getSkFont() const { return mFont; }

    // Back to the defaults.
    void reset();

    // The paint's flag and the font's edging.
    void setAntiAlias(bool aa);

    // In em.
    void setLetterSpacing(float letterSpacing) { mLetterSpacing = letterSpacing; }
    float getLetterSpacing() const { return mLetterSpacing; }

    // In pixels.
    void setWordSpacing(float wordSpacing) { mWordSpacing = wordSpacing; }
    float getWordSpacing() const { return mWordSpacing; }

    void setFontFeatureSettings(const std::string& fontFeatureSettings) {
        mFontFeatureSettings = fontFeatureSettings;
    }
    std::string getFontFeatureSettings() const { return mFontFeatureSettings; }

    void setMinikinLocaleListId(uint32_t minikinLocaleListId) {
        mMinikinLocaleListId = minikinLocaleListId;
    }
    uint32_t getMinikinLocaleListId() const { return mMinikinLocaleListId; }

    void setFamilyVariant(minikin::FamilyVariant variant) { mFamilyVariant = variant; }
    minikin::FamilyVariant getFamilyVariant() const { return mFamilyVariant; }

    enum Align {
        kLeft_Align,
        kCenter_Align,
        kRight_Align,
    };
    void setTextAlign(Align align) { mAlign = align; }
    Align getTextAlign() const { return mAlign; }

    // Borrowed.
    void setAndroidTypeface(Typeface* typeface) { mTypeface = typeface; }
    const Typeface* getAndroidTypeface() const { return mTypeface; }

    // Decorations of drawing; no effect on glyphs.
    void setStrikeThru(bool strikeThru) { mStrikeThru = strikeThru; }
    bool isStrikeThru() const { return mStrikeThru; }
    void setUnderline(bool underline) { mUnderline = underline; }
    bool isUnderline() const { return mUnderline; }
    void setDevKern(bool devKern) { mDevKern = devKern; }
    bool isDevKern() const { return mDevKern; }

    // The flags of android.graphics.Paint. Setting overwrites every setting that has a bit.
    uint32_t getJavaFlags() const;
    void setJavaFlags(uint32_t flags);

private:
    SkFont mFont;
    float mLetterSpacing = 0.0f;
    float mWordSpacing = 0.0f;
    std::string mFontFeatureSettings;
    uint32_t mMinikinLocaleListId = 0;
    minikin::FamilyVariant mFamilyVariant = minikin::FamilyVariant::DEFAULT;
    Align mAlign = kLeft_Align;
    Typeface* mTypeface = nullptr;
    bool mStrikeThru = false;
    bool mUnderline = false;
    bool mDevKern = false;
};

}  // namespace android
