// Life, effects and rendering of a bound text object.
#include <android/log.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "base/NativeError.h"
#include "bridge/BoundText.h"
#include "bridge/Image.h"
#include "bridge/JniReferences.h"
#include "bridge/Natives.h"
#include "effect/GxEffect.h"
#include "raster/GxBitmap.h"
#include "text/GxTextInstanceManager.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace GxFontEffect {

namespace {

// One number per native; never renumber.
enum Site : int {
    kSiteClear = 1,
    kSiteInnerShadow = 2,
    kSiteOuterShadow = 3,
    kSiteOuterGlow = 4,
    kSiteStroke = 5,
    kSiteLinearGradient = 6,
    kSiteRender = 7,
    kSiteBitmapSize = 8,
    kSiteLeftOffset = 9,
    kSiteTopOffset = 10,
    kSiteRightOffset = 11,
    kSiteBottomOffset = 12,
};

// What `add` answers for the effect stack; -1 without one, which is logged.
template <typename Add>
jint AddEffect(JNIEnv* env, jobject self, Site site, const char* noEffectMessage, Add add) {
    const BoundText text = RequireBoundTextObject(env, self, site);
    if (!text) return -1;
    if (GxEffect* const effect = text->GetEffect()) return add(*effect);
    __android_log_print(ANDROID_LOG_ERROR, kTextTag, "%s", noEffectMessage);
    return -1;
}

jint MarginOf(JNIEnv* env, jobject self, Site site, int (GxEffect::*margin)() const) {
    const BoundText text = RequireBoundTextObject(env, self, site);
    const GxEffect* effect = text ? text->GetEffect() : nullptr;
    return effect ? (effect->*margin)() : 0;
}

uint32_t Color(jint color) {
    return static_cast<uint32_t>(color);
}

// The stops of a gradient given as one array per field; none when the arrays differ in length or
// cannot be read.
std::optional<std::vector<GxGradient>> GradientStops(JNIEnv* env, jintArray colors,
                                                     jfloatArray opacities, jfloatArray positions) {
    const jsize count = env->GetArrayLength(colors);
    if (env->GetArrayLength(opacities) != count || env->GetArrayLength(positions) != count) {
        return std::nullopt;
    }
    const ArrayElements<jintArray> color(env, colors);
    if (!color) return std::nullopt;
    const ArrayElements<jfloatArray> opacity(env, opacities);
    if (!opacity) return std::nullopt;
    const ArrayElements<jfloatArray> position(env, positions);
    if (!position) return std::nullopt;

    std::vector<GxGradient> stops(static_cast<size_t>(count));
    for (jsize i = 0; i < count; i++) {
        stops[static_cast<size_t>(i)] = {Color(color[i]), opacity[i], position[i]};
    }
    return stops;
}

ImageSize SizeWithMargins(const GxView& view, const GxEffect& effect) {
    return {int64_t{view.GetWidth()} + effect.getLeftOffset() + effect.getRightOffset(),
            int64_t{view.GetHeight()} + effect.getTopOffset() + effect.getBottomOffset()};
}

}  // namespace

void GxText_finalize(JNIEnv* env, jobject self) {
    const std::optional<jint> handle = ReadHandle(env, self);
    if (!handle || *handle < 0) return;
    const BoundText text(*handle);
    if (!text) return;
    __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "finalize : RH %d", text->GetRuntimeHandle());
    GxTextInstanceManager::Release(text.get(), true);
}

void GxText_ClearAllTextEffect(JNIEnv* env, jobject self) {
    const std::optional<jint> handle = ReadHandle(env, self);
    if (handle && *handle < 0) return;
    const BoundText text = handle ? BoundText(*handle) : BoundText();
    if (!text) {
        ReportNativeError(kTextTag, GXE_ERROR_NOT_BOUND, kSiteClear);
    } else if (GxEffect* const effect = text->GetEffect()) {
        effect->cleanAllEffect();
    }
}

jint GxText_AddInnerShadowTextEffect(JNIEnv* env, jobject self, jfloat angle, jfloat distance,
                                     jfloat size, jint color, jfloat opacity) {
    return AddEffect(env, self, kSiteInnerShadow,
                     "GxText_AddInnerShadowTextEffect() effect is NULL", [=](GxEffect& effect) {
                         return effect.addInnerShadowText(angle, distance, size, Color(color),
                                                          opacity);
                     });
}

jint GxText_AddOuterShadowTextEffect(JNIEnv* env, jobject self, jfloat angle, jfloat distance,
                                     jfloat size, jint color, jfloat opacity) {
    return AddEffect(env, self, kSiteOuterShadow,
                     "GxText_AddOuterShadowTextEffect() effect is NULL", [=](GxEffect& effect) {
                         return effect.addOuterShadowText(angle, distance, size, Color(color),
                                                          opacity);
                     });
}

jint GxText_AddOuterGlowTextEffect(JNIEnv* env, jobject self, jfloat size, jint color,
                                   jfloat opacity) {
    return AddEffect(env, self, kSiteOuterGlow, "GxText_AddOuterGlowTextEffect() - Effect is NULL",
                     [=](GxEffect& effect) {
                         return effect.addOuterGlowText(size, Color(color), opacity, 0, nullptr);
                     });
}

jint GxText_AddStrokeTextEffect(JNIEnv* env, jobject self, jfloat size, jint color, jfloat opacity,
                                jint cap, jint position) {
    return AddEffect(env, self, kSiteStroke, "GxText_AddStrokeTextEffect() effect is NULL",
                     [=](GxEffect& effect) {
                         return effect.addStrokeText(size, Color(color), opacity, cap, position);
                     });
}

jint GxText_AddLinearGradientTextEffect(JNIEnv* env, jobject self, jfloat angle, jfloat scale,
                                        jintArray colors, jfloatArray opacities,
                                        jfloatArray positions, jfloat opacity) {
    return AddEffect(env, self, kSiteLinearGradient,
                     "GxText_AddLinearGradientTextEffect() effect is NULL", [=](GxEffect& effect) {
                         if (!colors || !opacities || !positions) return -1;
                         const auto stops = GradientStops(env, colors, opacities, positions);
                         if (!stops) return -1;
                         return effect.addLinearGradientText(
                             angle, scale, opacity, static_cast<int>(stops->size()), stops->data());
                     });
}

jintArray GxText_RenderTextEffect(JNIEnv* env, jobject self) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteRender);
    if (!text) return nullptr;
    GxView* const view = text->GetView();
    const GxEffect* effect = text->GetEffect();
    if (!view || !effect) return nullptr;
    const ImageSize size = SizeWithMargins(*view, *effect);
    if (!size.FitsJavaArray()) {
        __android_log_print(ANDROID_LOG_ERROR, kTextTag,
                            "GxText_RenderTextEffect() - no array holds %lld x %lld pixels",
                            static_cast<long long>(size.width),
                            static_cast<long long>(size.height));
        return nullptr;
    }
    const GxView::BitmapSize before = *view->GetDrawingBitmapSize();
    view->SetBitmapWidth(static_cast<int>(size.width));
    view->SetBitmapHeight(static_cast<int>(size.height));
    const uint32_t* pixels = Render(*text, size);
    if (size.Pixels() > 0 && !pixels) {
        __android_log_print(ANDROID_LOG_ERROR, kTextTag,
                            "GxText_RenderTextEffect() - pixels are NULL");
        // Of the frame that the object has.
        view->SetBitmapWidth(before.bitmapWidth);
        view->SetBitmapHeight(before.bitmapHeight);
        return nullptr;
    }
    return NewIntArray(env, reinterpret_cast<const jint*>(pixels), size.Pixels());
}

jintArray GxText_GetDrawingBitmapSize(JNIEnv* env, jobject self) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteBitmapSize);
    const GxView* view = text ? text->GetView() : nullptr;
    if (!view) return nullptr;
    const GxView::BitmapSize* size = view->GetDrawingBitmapSize();
    const jint pair[] = {size->bitmapWidth, size->bitmapHeight};
    return NewIntArray(env, pair, 2);
}

jint GxText_GetEffectLeftOffset(JNIEnv* env, jobject self) {
    return MarginOf(env, self, kSiteLeftOffset, &GxEffect::getLeftOffset);
}

jint GxText_GetEffectTopOffset(JNIEnv* env, jobject self) {
    return MarginOf(env, self, kSiteTopOffset, &GxEffect::getTopOffset);
}

jint GxText_GetEffectRightOffset(JNIEnv* env, jobject self) {
    return MarginOf(env, self, kSiteRightOffset, &GxEffect::getRightOffset);
}

jint GxText_GetEffectBottomOffset(JNIEnv* env, jobject self) {
    return MarginOf(env, self, kSiteBottomOffset, &GxEffect::getBottomOffset);
}

}  // namespace GxFontEffect
