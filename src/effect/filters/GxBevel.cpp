#include "effect/filters/GxBevel.h"

#include "effect/filters/Relief.h"

namespace GxFontEffect {

namespace {

ReliefPlace placeOf(const GxBevelProperty* property) {
    return property && property->kind == 1 ? ReliefPlace::kInside : ReliefPlace::kOutside;
}

}  // namespace

int GxBevel::getOffset() {
    return reliefMargin(property.get(), placeOf(property.get()));
}

void GxBevel::doPostProcessing(GxECore::ParamPostProcessing* param) {
    renderRelief(param, property.get(), placeOf(property.get()));
}

}  // namespace GxFontEffect
