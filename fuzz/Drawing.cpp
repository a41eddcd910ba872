#include "Drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "SkBitmap.h"
#include "SkCanvas.h"
#include "SkColorSpace.h"
#include "SkImageInfo.h"
#include "SkTextBlob.h"
#include "hwui/MinikinUtils.h"
#include "minikin/LocaleList.h"

namespace gxfuzz {

namespace {

constexpr int kWidth = 80;
constexpr int kHeight = 40;

float anyFloat(FuzzedDataProvider& input) {
    const auto bits = input.ConsumeIntegral<uint32_t>();
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

bool isFinite(const minikin::MinikinRect& box) {
    return std::isfinite(box.mLeft) && std::isfinite(box.mTop) && std::isfinite(box.mRight) &&
           std::isfinite(box.mBottom);
}

void check(const minikin::Layout& layout, size_t wantedUnits) {
    require(layout.getAdvances().size() == wantedUnits, "an advance for each unit");
    require(std::isfinite(layout.getAdvance()), "finite advance");
    require(isFinite(layout.getBounds()), "finite bounds");
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        require(layout.getFont(i) != nullptr, "a font for each glyph");
        require(std::isfinite(layout.getX(i)) && std::isfinite(layout.getY(i)), "finite position");
    }
}

struct DrawRun {
    const minikin::Layout& layout;
    SkCanvas& canvas;
    const android::Paint& paint;

    void operator()(size_t start, size_t end) const {
        SkTextBlobBuilder builder;
        const auto& run = builder.allocRunPos(paint.getSkFont(), static_cast<int>(end - start));
        for (size_t i = start; i < end; ++i) {
            const int glyph = static_cast<int>(i);
            run.glyphs[i - start] = static_cast<SkGlyphID>(layout.getGlyphId(glyph));
            run.pos[2 * (i - start)] = layout.getX(glyph);
            run.pos[2 * (i - start) + 1] = layout.getY(glyph);
        }
        canvas.drawTextBlob(builder.make(), 2, 0.75f * kHeight, paint);
    }
};

}  // namespace

void require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

float chooseSize(FuzzedDataProvider& input) {
    constexpr float kSizes[] = {12,  16,    20.5f, 32,   9,    64,   255.9f, 256, 257,
                                400, 0.01f, 0,     0.5f, 1000, 4000, -3,     1e9f};
    return input.ConsumeIntegral<uint8_t>() < 250 ? input.PickValueInArray(kSizes)
                                                  : anyFloat(input);
}

float chooseFactor(FuzzedDataProvider& input) {
    constexpr float kFactors[] = {1, 0, -1, 0.5f, 2, 0.03f, -0.25f, 10, 1e-6f, -1e9f};
    return input.ConsumeIntegral<uint8_t>() < 240 ? input.PickValueInArray(kFactors)
                                                  : anyFloat(input);
}

android::Paint choosePaint(FuzzedDataProvider& input) {
    android::Paint paint;
    SkFont& font = paint.getSkFont();
    font.setSize(chooseSize(input));
    const auto given = input.ConsumeIntegral<uint8_t>();
    if (given & 1) font.setScaleX(chooseFactor(input));
    if (given & 2) font.setSkewX(chooseFactor(input));
    if (given & 4) paint.setLetterSpacing(chooseFactor(input));
    if (given & 8) paint.setWordSpacing(chooseFactor(input));
    if (given & 16) paint.setFontFeatureSettings(input.ConsumeRandomLengthString(24));
    if (given & 32) {
        constexpr const char* kLocales[] = {"ja", "zh-Hant,ko", "ar", "und-Deva", "und-Zsye", "en"};
        paint.setMinikinLocaleListId(minikin::registerLocaleList(input.PickValueInArray(kLocales)));
    }
    font.setColorGlyphs(given & 64);
    paint.setJavaFlags(input.ConsumeIntegral<uint16_t>());
    font.setHinting(static_cast<SkFontHinting>(input.ConsumeIntegralInRange(0, 3)));
    paint.setFamilyVariant(static_cast<minikin::FamilyVariant>(input.ConsumeIntegralInRange(0, 2)));
    return paint;
}

void layOutAndDraw(android::Paint& paint, const android::Typeface& typeface,
                   const std::u16string& text, minikin::Bidi bidi, const Part& part, bool onMask) {
    const auto* units = reinterpret_cast<const uint16_t*>(text.data());
    const minikin::Layout layout =
        android::MinikinUtils::doLayout(&paint, bidi, &typeface, units, text.size(), part.start,
                                        part.count, part.contextStart, part.contextCount, nullptr);
    const bool contextInside =
        part.contextStart <= text.size() && part.contextCount <= text.size() - part.contextStart;
    const bool partInside = contextInside && part.start >= part.contextStart &&
                            part.start - part.contextStart <= part.contextCount &&
                            part.count <= part.contextCount - (part.start - part.contextStart);
    check(layout, partInside ? part.count : layout.getAdvances().size());

    static std::vector<uint8_t> pixels(size_t{kWidth} * kHeight * 4);
    std::fill(pixels.begin(), pixels.end(), uint8_t{0});
    const SkImageInfo info =
        onMask ? SkImageInfo::MakeA8(kWidth, kHeight)
               : SkImageInfo::Make(kWidth, kHeight, kRGBA_8888_SkColorType, kUnpremul_SkAlphaType,
                                   SkColorSpace::MakeSRGB());
    SkBitmap bitmap;
    if (!bitmap.installPixels(info, pixels.data(), size_t{kWidth} * (onMask ? 1 : 4))) return;
    SkCanvas canvas(bitmap);
    DrawRun draw{layout, canvas, paint};
    android::MinikinUtils::forFontRun(layout, &paint, draw);
}

}  // namespace gxfuzz
