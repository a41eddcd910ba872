// Rows of the two shadows: the filters as a whole, the inner against the outer of the same blur.
#include <memory>
#include <string>

#include "Bench.h"
#include "Painter.h"
#include "Planes.h"
#include "effect/GxProperty.h"
#include "effect/filters/GxInnerShadow.h"
#include "effect/filters/GxOuterShadow.h"

namespace gxbench {

using namespace GxFontEffect;

void addShadowRows() {
    for (const int size : {2, 5, 10, 25, 50, 100}) {
        addRow({"inner shadow " + std::to_string(size), "outer shadow", {0, 1}, kPixels, [=] {
                    const auto scene = std::make_shared<FilterScene>(textMask(), kWidth, kHeight);
                    const auto blur = static_cast<float>(size);
                    const GxInnerShadowProperty inner(120, 6, blur, 0xFF103050, 1);
                    const GxOuterShadowProperty outer(120, 6, blur, 0xFF103050, 1);
                    Contenders contenders;
                    contenders.prepare = [=] { scene->clear(); };
                    contenders.ours = painter<GxInnerShadow>(scene, inner);
                    contenders.peer = painter<GxOuterShadow>(scene, outer);
                    return contenders;
                }});
    }
}

}  // namespace gxbench
