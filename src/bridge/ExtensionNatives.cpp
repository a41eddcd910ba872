// Styles and pictures of a text object.
#include <android/log.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "bridge/BoundText.h"
#include "bridge/Extension.h"
#include "bridge/Image.h"
#include "bridge/JniReferences.h"
#include "bridge/ModifiedUtf8.h"
#include "effect/GxEffect.h"
#include "raster/GxMath.h"
#include "style/EffectStack.h"
#include "style/Style.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace GxFontEffect {

namespace {

// One number per native; never renumber.
enum : int {
    kSiteExtensionDress = 31,
    kSiteExtensionFade = 32,
    kSiteExtensionMeasure = 33,
    kSiteExtensionRender = 34,
};

constexpr const char* kNoText = "there is no native text object";
constexpr const char* kNull = "an argument is null";

// --- mistakes ---

jbyteArray NewByteArray(JNIEnv* env, const std::string& bytes) {
    const auto count = static_cast<jsize>(bytes.size());
    const jbyteArray array = env->NewByteArray(count);
    if (array) {
        env->SetByteArrayRegion(array, 0, count, reinterpret_cast<const jbyte*>(bytes.data()));
    } else {
        env->ExceptionClear();
    }
    return array;
}

void AppendPart(std::string& message, std::string part) {
    std::replace(part.begin(), part.end(), '\0', ' ');
    message.append(part).push_back('\0');
}

jbyteArray Mistakes(JNIEnv* env, const std::vector<gxtext::StyleProblem>& problems) {
    std::string message;
    for (const gxtext::StyleProblem& problem : problems) {
        AppendPart(message, problem.path);
        AppendPart(message, problem.reason);
        AppendPart(message, problem.allowed);
    }
    return NewByteArray(env, message);
}

jbyteArray Mistake(JNIEnv* env, const char* reason) noexcept {
    try {
        return Mistakes(env, {{"$", reason, ""}});
    } catch (const std::exception&) {
        return env->NewByteArray(0);  // says that there is one
    }
}

// What `work` gives, or the mistakes that it throws.
template <typename Work>
jbyteArray Checked(JNIEnv* env, Work work) noexcept {
    const auto fail = [env](const char* reason) { return Mistake(env, reason); };
    return Contained(
        [&] {
            try {
                return work();
            } catch (const gxtext::StyleError& error) {
                return Mistakes(env, error.problems());
            } catch (const std::bad_alloc&) {
                return fail("there is not enough memory");
            }
        },
        fail);
}

gxtext::Style ReadStyle(JNIEnv* env, jbyteArray json) {
    const ArrayElements<jbyteArray> bytes(env, json);
    if (!bytes) throw std::bad_alloc();
    return gxtext::Style::fromJson(
        {reinterpret_cast<const char*>(bytes.get()), static_cast<size_t>(bytes.length())});
}

// --- patterns ---

// The pictures of a call by their names.
class Pictures {
public:
    Pictures(JNIEnv* env, jobjectArray names, jintArray widths, jobjectArray pictures)
        : env_(env), pictures_(pictures), widths_(env, widths) {
        if (!widths_) throw std::bad_alloc();
        const jsize count =
            std::min({env->GetArrayLength(names), widths_.length(), env->GetArrayLength(pictures)});
        for (jsize i = 0; i < count; i++) {
            const LocalRef<jstring> name(
                env, static_cast<jstring>(env->GetObjectArrayElement(names, i)));
            const UtfChars chars(env, name.get());
            if (chars) places_.emplace(Utf8FromModifiedUtf8(chars.get()), i);
        }
    }

    // Bytes alpha, red, green, blue.
    GxBitmap load(const std::string& name) const {
        const auto known = places_.find(name);
        if (known == places_.end()) throw gxtext::Error("there is no picture \"" + name + "\"");
        const LocalRef<jintArray> picture(
            env_, static_cast<jintArray>(env_->GetObjectArrayElement(pictures_, known->second)));
        if (!picture) throw gxtext::Error("there is no picture \"" + name + "\"");
        const jint width = widths_[known->second];
        const jsize count = env_->GetArrayLength(picture.get());
        if (width < 1 || count < 1 || count % width != 0) {
            throw gxtext::Error("the picture \"" + name + "\" has no whole rows");
        }
        const ArrayElements<jintArray> pixels(env_, picture.get());
        GxBitmap bitmap(width, count / width, 4);
        if (!pixels || !bitmap.data) throw std::bad_alloc();
        uint8_t* byte = bitmap.data;
        for (jsize i = 0; i < count; i++) {
            const auto pixel = static_cast<uint32_t>(pixels[i]);
            for (const int shift : {24, 16, 8, 0}) *byte++ = static_cast<uint8_t>(pixel >> shift);
        }
        return bitmap;
    }

private:
    JNIEnv* env_;
    jobjectArray pictures_;
    ArrayElements<jintArray> widths_;
    std::map<std::string, jsize> places_;
};

// --- looks ---

// Size and distance of each effect: those of a scaled style may be longer than a file allows.
void SetLengths(JNIEnv* env, gxtext::Style& style, jfloatArray lengths) {
    const ArrayElements<jfloatArray> given(env, lengths);
    if (!given) throw std::bad_alloc();
    const size_t count = std::min(style.effects.size(), static_cast<size_t>(given.length()) / 2);
    for (size_t i = 0; i < count; i++) {
        style.effects[i].size = given[static_cast<jsize>(2 * i)];
        style.effects[i].distance = given[static_cast<jsize>(2 * i + 1)];
    }
}

void SetLook(GxTextObject& text, const gxtext::Style& style, jint switches,
             const gxtext::PatternLoader& loadPattern) {
    GxEffect& effect = *text.GetEffect();
    effect.cleanAllEffect();
    effect.setConfineInside((switches & kSwitchLetInsideOut) == 0);
    text.setKeepsWholeInk((switches & kSwitchWholeInk) != 0);
    text.setFadesFill(style.fillOpacity < 1);
    text.setKeepsColorGlyphs(style.emoji == gxtext::Emoji::kColor);
    effect.setTextOpacity(style.fillOpacity < 1 ? style.fillOpacity : style.opacity);
    const gxtext::Background box = style.background.value_or(gxtext::Color{0});
    text.SetBackgroundShape({box.radius, box.padding, box.span == gxtext::BackgroundSpan::kBlock});
    text.SetCanvasColor(style.canvas.value_or(gxtext::Color{0}).argb);
    try {
        dress(effect, style, loadPattern);
    } catch (...) {
        effect.cleanAllEffect();
        throw;
    }
}

// --- pictures ---

ImageSize FitImage(JNIEnv* env, GxTextObject& text, jintArray frame) {
    GxView& view = *text.GetView();
    const GxEffect& effect = *text.GetEffect();
    if (!text.FitBitmapToView()) return {-1, -1};
    const GxRect ink = text.GetInkMargins();
    const jint values[] = {view.GetBitmapWidth(),
                           view.GetBitmapHeight(),
                           effect.getLeftOffset() + ink.left,
                           effect.getTopOffset() + ink.top,
                           effect.getRightOffset() + ink.right,
                           effect.getBottomOffset() + ink.bottom};
    if (env->GetArrayLength(frame) < static_cast<jsize>(std::size(values))) return {-1, -1};
    env->SetIntArrayRegion(frame, 0, static_cast<jsize>(std::size(values)), values);
    return {view.GetBitmapWidth(), view.GetBitmapHeight()};
}

jint LogTextFailure(const char* what) {
    __android_log_print(ANDROID_LOG_ERROR, kTextTag, "TextExtension - %s", what);
    return 0;
}

}  // namespace

}  // namespace GxFontEffect

using namespace GxFontEffect;

GX_EXTENSION(jbyteArray, check)(JNIEnv* env, jclass, jbyteArray json) {
    return Checked(env, [&]() -> jbyteArray {
        if (!json) return Mistake(env, kNull);
        ReadStyle(env, json);
        return nullptr;
    });
}

GX_EXTENSION(jbyteArray, dress)
(JNIEnv* env, jclass, jobject javaText, jbyteArray json, jfloatArray lengths, jint switches,
 jobjectArray names, jintArray widths, jobjectArray pictures) {
    return Checked(env, [&]() -> jbyteArray {
        if (!javaText || !json || !lengths || !names || !widths || !pictures) {
            return Mistake(env, kNull);
        }
        const BoundText text = RequireBoundTextObject(env, javaText, kSiteExtensionDress);
        if (!text || !text->GetEffect()) return Mistake(env, kNoText);
        gxtext::Style style = ReadStyle(env, json);
        SetLengths(env, style, lengths);
        const Pictures patterns(env, names, widths, pictures);
        SetLook(*text, style, switches, [&patterns](const std::filesystem::path& file) {
            return patterns.load(file.string());
        });
        return nullptr;
    });
}

GX_EXTENSION(void, fade)(JNIEnv* env, jclass, jobject javaText, jfloat opacity) {
    Contained(
        [&] {
            if (!javaText) return 0;
            const BoundText text = RequireBoundTextObject(env, javaText, kSiteExtensionFade);
            if (!text) return 0;
            const uint32_t color = text->GetTextColor();
            const float share = clampFloat(opacity, 0.0f, 1.0f);
            const int alpha = toInt(static_cast<float>(color >> 24) * share + 0.5f);
            text->SetTextColor(static_cast<uint32_t>(alpha) << 24 | (color & 0x00FFFFFFu));
            return 0;
        },
        LogTextFailure);
}

GX_EXTENSION(jboolean, measure)(JNIEnv* env, jclass, jobject javaText, jintArray frame) {
    return static_cast<jboolean>(Contained(
        [&]() -> jint {
            if (!javaText || !frame) return 0;
            const BoundText text = RequireBoundTextObject(env, javaText, kSiteExtensionMeasure);
            if (!text || !text->GetView() || !text->GetEffect()) return 0;
            return FitImage(env, *text, frame).width >= 0;
        },
        LogTextFailure));
}

GX_EXTENSION(jintArray, render)(JNIEnv* env, jclass, jobject javaText, jintArray frame) {
    return Contained(
        [&]() -> jintArray {
            if (!javaText || !frame) return nullptr;
            const BoundText text = RequireBoundTextObject(env, javaText, kSiteExtensionRender);
            if (!text || !text->GetView() || !text->GetEffect()) return nullptr;
            const ImageSize size = FitImage(env, *text, frame);
            if (!size.FitsJavaArray()) return nullptr;
            const uint32_t* pixels = Render(*text, size);
            if (size.Pixels() > 0 && !pixels) return nullptr;
            return NewIntArray(env, reinterpret_cast<const jint*>(pixels), size.Pixels());
        },
        [](const char* what) -> jintArray {
            LogTextFailure(what);
            return nullptr;
        });
}
