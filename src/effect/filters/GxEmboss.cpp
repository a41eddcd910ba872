#include "effect/filters/GxEmboss.h"

#include "effect/filters/Relief.h"

namespace GxFontEffect {

namespace {

ReliefPlace placeOf(const GxEmbossProperty* property) {
    return property && property->kind == 1 ? ReliefPlace::kGrooveAcross : ReliefPlace::kAcross;
}

}  // namespace

int GxEmboss::getOffset() {
    return reliefMargin(property.get(), placeOf(property.get()));
}

void GxEmboss::doPostProcessing(GxECore::ParamPostProcessing* param) {
    renderRelief(param, property.get(), placeOf(property.get()));
}

}  // namespace GxFontEffect
