#include "hwui/Paint.h"

namespace android {
namespace {

// Flag bits of android.graphics.Paint.
constexpr uint32_t kAntiAliasFlag = 0x001;
constexpr uint32_t kFilterBitmapFlag = 0x002;
constexpr uint32_t kDitherFlag = 0x004;
constexpr uint32_t kUnderlineFlag = 0x008;
constexpr uint32_t kStrikeThruFlag = 0x010;
constexpr uint32_t kFakeBoldFlag = 0x020;
constexpr uint32_t kLinearTextFlag = 0x040;
constexpr uint32_t kSubpixelTextFlag = 0x080;
constexpr uint32_t kDevKernFlag = 0x100;
constexpr uint32_t kEmbeddedBitmapFlag = 0x400;
constexpr uint32_t kAutoHintingFlag = 0x800;

}  // namespace

Paint::Paint() {
    mFont.setEdging(SkFont::Edging::kAlias);
}

Paint::Paint(const SkPaint& paint) : SkPaint(paint) {
    mFont.setEdging(isAntiAlias() ? SkFont::Edging::kAntiAlias : SkFont::Edging::kAlias);
}

void Paint::reset() {
    *this = Paint();
}

void Paint::setAntiAlias(bool aa) {
    SkPaint::setAntiAlias(aa);
    mFont.setEdging(aa ? SkFont::Edging::kAntiAlias : SkFont::Edging::kAlias);
}

uint32_t Paint::getJavaFlags() const {
    uint32_t flags = 0;
    if (isAntiAlias()) flags |= kAntiAliasFlag;
    if (getFilterQuality() != kNone_SkFilterQuality) flags |= kFilterBitmapFlag;
    if (isDither()) flags |= kDitherFlag;
    if (mUnderline) flags |= kUnderlineFlag;
    if (mStrikeThru) flags |= kStrikeThruFlag;
    if (mFont.isEmbolden()) flags |= kFakeBoldFlag;
    if (mFont.isLinearMetrics()) flags |= kLinearTextFlag;
    if (mFont.isSubpixel()) flags |= kSubpixelTextFlag;
    if (mDevKern) flags |= kDevKernFlag;
    if (mFont.isEmbeddedBitmaps()) flags |= kEmbeddedBitmapFlag;
    if (mFont.isForceAutoHinting()) flags |= kAutoHintingFlag;
    return flags;
}

void Paint::setJavaFlags(uint32_t flags) {
    setAntiAlias(flags & kAntiAliasFlag);
    setFilterQuality(flags & kFilterBitmapFlag ? kLow_SkFilterQuality : kNone_SkFilterQuality);
    setDither(flags & kDitherFlag);
    mUnderline = flags & kUnderlineFlag;
    mStrikeThru = flags & kStrikeThruFlag;
    mFont.setEmbolden(flags & kFakeBoldFlag);
    mFont.setLinearMetrics(flags & kLinearTextFlag);
    mFont.setSubpixel(flags & kSubpixelTextFlag);
    mDevKern = flags & kDevKernFlag;
    mFont.setEmbeddedBitmaps(flags & kEmbeddedBitmapFlag);
    mFont.setForceAutoHinting(flags & kAutoHintingFlag);
}

}  // namespace android
