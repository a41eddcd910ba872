// The kernels of a build without Highway: each is its plain form.
#include "raster/kernels/BoxBlur.h"
#include "raster/kernels/ContourDistance.h"
#include "raster/kernels/DiscDilation.h"
#include "raster/kernels/GradientRows.h"
#include "raster/kernels/Growth.h"
#include "raster/kernels/PatternRows.h"
#include "raster/kernels/PlainBlendRows.h"
#include "raster/kernels/ReliefHeight.h"
#include "raster/kernels/ReliefLight.h"
#include "raster/kernels/SeparableBlur.h"
#include "raster/kernels/SimdTargets.h"

namespace GxFontEffect::kernels {

void srcOver8Rows(const BlendArea& area, Rgba color) {
    plain::srcOver8Rows(area, color);
}
void dstOver8Rows(const BlendArea& area, Rgba color) {
    plain::dstOver8Rows(area, color);
}
void dstOverNsa8Rows(const BlendArea& area, Rgba color) {
    plain::dstOverNsa8Rows(area, color);
}
void dstOverSa8Rows(const BlendArea& area, Rgba color) {
    plain::dstOverSa8Rows(area, color);
}
void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table) {
    plain::dstOverMapped8Rows(area, table);
}
void overwrite8Rows(const BlendArea& area, Rgba color) {
    plain::overwrite8Rows(area, color);
}
void max8Rows(const BlendArea& area) {
    plain::max8Rows(area);
}
void srcOver32Rows(const BlendArea& area, SourceOrder order) {
    plain::srcOver32Rows(area, order);
}
void dstOver32Rows(const BlendArea& area, SourceOrder order) {
    plain::dstOver32Rows(area, order);
}
void swapRedBlueRow(Rgba* pixels, size_t count) {
    plain::swapRedBlueRow(pixels, count);
}
void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count) {
    plain::mixLayersRow(out, back, mask, count);
}
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha) {
    plain::fadeAndUnpremultiplyRow(pixels, count, alpha);
}
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count) {
    plain::clearUncoveredRow(pixels, mask, count);
}

void dilateOutside(const DilationBand& band) {
    dilateOutsidePlain(band);
}
void dilateInside(const DilationBand& band) {
    dilateInsidePlain(band);
}
void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    minimumPlain(a, b, count);
}
void linearGradientRows(const GradientFill& fill, float stepX, float stepY) {
    linearGradientRowsPlain(fill, stepX, stepY);
}
void radialGradientRows(const GradientFill& fill, float step) {
    radialGradientRowsPlain(fill, step);
}
void patternRows(const PatternFill& fill) {
    patternRowsPlain(fill);
}
void growMask(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch) {
    growMaskPlain(mask, width, height, passes, scratch);
}
void blurRows(const BlurPass& pass, const BlurWeights& weights, BlurInput input,
              uint8_t* /*scratch*/) {
    blurRowsPlain(pass, weights, input);
}
void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input,
                 uint8_t* /*scratch*/) {
    blurColumnsPlain(pass, weights, input);
}
void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    blurPlanePlain(in, out, width, height, weights, input, scratch);
}

void blurPaddedPlane(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights,
                     uint8_t* /*scratch*/) {
    blurPaddedPlanePlain(plane, width, height, weights);
}

void contourDistances(const ContourPlanes& planes) {
    contourDistancesPlain(planes);
}
void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch) {
    reliefHeightsPlain(planes, slope, heights, scratch);
}
void boxBlur(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch) {
    boxBlurPlain(plane, width, height, reach, scratch);
}
void reliefLight(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch) {
    reliefLightPlain(heights, width, height, light, scratch);
}
void reliefMasks(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                 uint8_t* highlight, uint8_t* shadow) {
    reliefMasksPlain(light, coverage, count, part, highlight, shadow);
}

std::vector<std::string> simdTargetNames() {
    return {"plain"};
}
std::string simdTargetName() {
    return "plain";
}
void forceSimdTarget(const std::string& /*name*/) {}
bool hasDispatchedSimd() {
    return true;
}
bool looksForShortcuts() {
    return false;
}
void setLooksForShortcuts(bool /*looks*/) {}

}  // namespace GxFontEffect::kernels
