// Paint, view and layout of the Android widget, copied into a bound text object.
#include <android/log.h>
#include <hwui/Paint.h>
#include <minikin/FamilyVariant.h>
#include <minikin/LocaleList.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/GxString.h"
#include "base/List.h"
#include "bridge/AndroidMethods.h"
#include "bridge/BoundText.h"
#include "bridge/JavaMethods.h"
#include "bridge/JniReferences.h"
#include "bridge/LinePlacement.h"
#include "bridge/ModifiedUtf8.h"
#include "bridge/Natives.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace GxFontEffect {

namespace {

// One number per native; never renumber.
enum : int {
    kSitePaint = 1,
    kSiteView = 2,
    kSiteLine = 3,
    kSiteLayout = 4,
};

// Resolves a table that the native cannot do without: all of its methods must exist, also those
// that are not called, since a class without one of them is not the platform's. A missing method is
// logged after `prefix`.
bool ResolveAll(JNIEnv* env, jobject object, std::span<const JavaMethod> table,
                JavaMethods& methods, const char* prefix) {
    if (methods.Resolve(env, object, table)) return true;
    __android_log_print(ANDROID_LOG_ERROR, kTextTag, "%s%s not found", prefix, methods.missing());
    return false;
}

// Resolves one method that may be missing.
bool ResolveOptional(JNIEnv* env, jobject object, std::span<const JavaMethod> method,
                     JavaMethods& methods, const char* missingMessage) {
    if (methods.Resolve(env, object, method)) return true;
    __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "%s", missingMessage);
    return false;
}

// The String of a method without arguments; none when the object is null, the method is missing or
// gives null.
std::optional<std::string> OptionalUtf8(JNIEnv* env, jobject object,
                                        std::span<const JavaMethod> method,
                                        const char* missingMessage) {
    JavaMethods methods;
    if (!object || !ResolveOptional(env, object, method, methods, missingMessage)) {
        return std::nullopt;
    }
    return JavaCalls(env, object, methods).Utf8(0);
}

// --- paint ---

void CopyFont(const JavaCalls& javaPaint, android::Paint& paint) {
    SkFont& font = paint.getSkFont();
    font.setScaleX(javaPaint.Float(kPaintClass["getTextScaleX"]));
    font.setSkewX(javaPaint.Float(kPaintClass["getTextSkewX"]));
    font.setSize(javaPaint.Float(kPaintClass["getTextSize"]));
    font.setEmbolden(javaPaint.Bool(kPaintClass["isFakeBoldText"]));
    paint.setLetterSpacing(javaPaint.Float(kPaintClass["getLetterSpacing"]));
    paint.setFamilyVariant(javaPaint.Bool(kPaintClass["isElegantTextHeight"])
                               ? minikin::FamilyVariant::ELEGANT
                               : minikin::FamilyVariant::DEFAULT);
    // Overwrites the embolden bit too: the flags of a real paint agree with its isFakeBoldText.
    paint.setJavaFlags(static_cast<uint32_t>(javaPaint.Int(kPaintClass["getFlags"])));
    if (const auto features = javaPaint.Utf8(kPaintClass["getFontFeatureSettings"])) {
        paint.setFontFeatureSettings(*features);
    }
}

void CopyLocales(JNIEnv* env, const JavaCalls& javaPaint, android::Paint& paint) {
    const LocalRef<> locales(env, javaPaint.Object(kPaintClass["getTextLocales"]));
    const auto tags = OptionalUtf8(env, locales.get(), kLocaleListClass.methods,
                                   "LocaleList cannot find 'toLanguageTags' method id");
    if (tags) paint.setMinikinLocaleListId(minikin::registerLocaleList(*tags));
}

void CopyAlign(JNIEnv* env, const JavaCalls& javaPaint, android::Paint& paint) {
    const LocalRef<> align(env, javaPaint.Object(kPaintClass["getTextAlign"]));
    const auto name = OptionalUtf8(env, align.get(), kEnumClass.methods,
                                   "Paint.Align cannot find 'name' method id");
    if (!name) return;
    paint.setTextAlign(*name == "LEFT"    ? android::Paint::kLeft_Align
                       : *name == "RIGHT" ? android::Paint::kRight_Align
                                          : android::Paint::kCenter_Align);
}

// --- view ---

bool OptionalBool(JNIEnv* env, jobject object, std::span<const JavaMethod> method,
                  const char* missingMessage) {
    JavaMethods methods;
    return ResolveOptional(env, object, method, methods, missingMessage) &&
           JavaCalls(env, object, methods).Bool(0);
}

void CopyTypefaceStyle(JNIEnv* env, const JavaCalls& javaView, GxTextObject& text) {
    const LocalRef<> typeface(env, javaView.Object(kTextViewClass["getTypeface"]));
    if (!typeface) return;
    const bool bold = OptionalBool(env, typeface.get(), kTypefaceClass.Only("isBold"),
                                   "getTypeFace cannot find 'isBold' method id");
    if (env->ExceptionCheck()) return;
    const bool italic = OptionalBool(env, typeface.get(), kTypefaceClass.Only("isItalic"),
                                     "getTypeFace cannot find 'isItalic' method id");
    if (!env->ExceptionCheck()) text.SetTextStyle(bold, italic);
}

// --- layout ---

// False when the text object could not take the text.
bool CopyText(JNIEnv* env, jobject javaText, GxTextObject& text) {
    JavaMethods methods;
    if (!ResolveOptional(env, javaText, kObjectClass.methods, methods,
                         "getText cannot find 'toString' method id")) {
        return true;
    }
    const LocalRef<jstring> string(env, JavaCalls(env, javaText, methods).Object<jstring>(0));
    if (!string) return true;
    const UtfChars chars(env, string.get());
    if (!chars) return false;
    // Counted: lines are given by position in the Java text, whatever characters it holds.
    const std::wstring wide = WideFromModifiedUtf8(chars.get());
    GxString copy;
    return copy.Construct() && copy.Set(wide.data(), static_cast<int>(wide.size())) &&
           text.SetText(&copy);
}

// A class by name; null, without an exception, when there is none.
jclass FindClass(JNIEnv* env, const char* name) {
    const jclass found = env->FindClass(name);
    if (!found) env->ExceptionClear();
    return found;
}

// android.text.SpannableString over the text: the copy has the spans whatever kind of text it was.
jobject NewSpannable(JNIEnv* env, jobject javaText) {
    const LocalRef<jclass> javaClass(env, FindClass(env, kSpannableStringClass.name));
    if (!javaClass) return nullptr;
    const JavaMethod& fromText = kSpannableStringClass.Only("<init>").front();
    const jmethodID constructor =
        env->GetMethodID(javaClass.get(), fromText.name, fromText.signature);
    if (!constructor) {
        env->ExceptionClear();
        return nullptr;
    }
    return env->NewObject(javaClass.get(), constructor, javaText);
}

// The background spans over `length` UTF-16 units of the text; null when there are none.
jobjectArray BackgroundSpans(JNIEnv* env, jobject javaText, jint length) {
    const LocalRef<> spannable(env, NewSpannable(env, javaText));
    if (!spannable || env->ExceptionCheck()) return nullptr;
    const LocalRef<jclass> kind(env, FindClass(env, kBackgroundColorSpanClass.name));
    JavaMethods methods;
    if (!kind || !methods.Resolve(env, spannable.get(), kSpannableStringClass.Only("getSpans")))
        return nullptr;
    return JavaCalls(env, spannable.get(), methods)
        .Object<jobjectArray>(0, jint{0}, length, kind.get());
}

// The colour of the last background span, which lies over those before it.
std::optional<jint> BackgroundColor(JNIEnv* env, jobject javaText, jint length) {
    const LocalRef<jobjectArray> spans(env, BackgroundSpans(env, javaText, length));
    if (!spans) return std::nullopt;
    for (jsize i = env->GetArrayLength(spans.get()) - 1; i >= 0; i--) {
        const LocalRef<> span(env, env->GetObjectArrayElement(spans.get(), i));
        if (!span) continue;
        JavaMethods methods;
        if (!methods.Resolve(env, span.get(), kBackgroundColorSpanClass.methods))
            return std::nullopt;
        return JavaCalls(env, span.get(), methods).Int(0);
    }
    return std::nullopt;
}

// False when an object threw or the text could not be taken.
bool CopyTextAndBackground(JNIEnv* env, const JavaCalls& layout, GxTextObject& text) {
    const LocalRef<> javaText(env, layout.Object(kLayoutClass["getText"]));
    if (layout.Failed()) return false;
    std::optional<jint> background;
    if (javaText) {
        if (!CopyText(env, javaText.get(), text) || env->ExceptionCheck()) return false;
        if (const GxString* copy = text.GetText()) {
            background = BackgroundColor(env, javaText.get(), copy->GetUTF16Size() - 1);
        }
        if (env->ExceptionCheck()) return false;
    }
    text.SetBackgroundColor(static_cast<uint32_t>(background.value_or(0)), background.has_value());
    return true;
}

class JavaLayoutLines : public LineMetrics {
public:
    explicit JavaLayoutLines(const JavaCalls& layout) : layout_(layout) {}

    int32_t Baseline(int32_t line) override {
        return layout_.Int(kLayoutClass["getLineBaseline"], line);
    }
    int32_t Bottom(int32_t line) override {
        return layout_.Int(kLayoutClass["getLineBottom"], line);
    }
    int32_t Ascent(int32_t line) override {
        return layout_.Int(kLayoutClass["getLineAscent"], line);
    }
    int32_t Descent(int32_t line) override {
        return layout_.Int(kLayoutClass["getLineDescent"], line);
    }
    int32_t Start(int32_t line) override { return layout_.Int(kLayoutClass["getLineStart"], line); }
    int32_t VisibleEnd(int32_t line) override {
        return layout_.Int(kLayoutClass["getLineVisibleEnd"], line);
    }
    float Left(int32_t line) override { return layout_.Float(kLayoutClass["getLineLeft"], line); }
    float Width(int32_t line) override { return layout_.Float(kLayoutClass["getLineWidth"], line); }
    bool Failed() const override { return layout_.Failed(); }

private:
    const JavaCalls& layout_;
};

// Hands the records over; they go if the text object does not take them.
bool SetLines(GxTextObject& text, const std::vector<GxLineInfo>& lines) {
    List list;
    if (!list.Construct()) return false;
    std::vector<std::unique_ptr<GxLineInfo>> records;
    records.reserve(lines.size());
    for (const GxLineInfo& line : lines) {
        records.push_back(std::make_unique<GxLineInfo>(line));
        if (!list.Add(records.back().get())) return false;
    }
    if (!text.SetLineInfo(&list)) return false;
    for (std::unique_ptr<GxLineInfo>& record : records) static_cast<void>(record.release());
    return true;
}

}  // namespace

jboolean GxText_SetPaint(JNIEnv* env, jobject self, jobject javaPaint) {
    const BoundText text = RequireBoundTextObject(env, self, kSitePaint);
    if (!text) return false;
    JavaMethods methods;
    if (!ResolveAll(env, javaPaint, kPaintClass.methods, methods, "Java function ")) return false;
    const JavaCalls calls(env, javaPaint, methods);
    android::Paint paint;
    CopyFont(calls, paint);
    CopyLocales(env, calls, paint);
    CopyAlign(env, calls, paint);
    if (calls.Failed()) return false;
    return text->SetPaint(paint);
}

jboolean GxText_SetView(JNIEnv* env, jobject self, jobject javaView) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteView);
    GxView* const view = text ? text->GetView() : nullptr;
    if (!view) return false;
    JavaMethods methods;
    if (!ResolveAll(env, javaView, kTextViewClass.methods, methods, "GxText_SetView - Function ")) {
        return false;
    }
    const JavaCalls calls(env, javaView, methods);
    const auto gravity = static_cast<uint32_t>(calls.Int(kTextViewClass["getGravity"]));
    const jint maxLines = calls.Int(kTextViewClass["getMaxLines"]);
    const jint left = calls.Int(kTextViewClass["getPaddingLeft"]);
    const jint top = calls.Int(kTextViewClass["getPaddingTop"]);
    const jint right = calls.Int(kTextViewClass["getPaddingRight"]);
    const jint bottom = calls.Int(kTextViewClass["getPaddingBottom"]);
    const jint width = calls.Int(kTextViewClass["getWidth"]);
    const jint height = calls.Int(kTextViewClass["getHeight"]);
    const auto color = static_cast<uint32_t>(calls.Int(kTextViewClass["getCurrentTextColor"]));
    if (calls.Failed()) return false;
    view->gravity = gravity;
    view->maxLines = maxLines;
    view->SetPadding(left, top, right, bottom);
    view->SetSize(width, height);
    text->SetTextColor(color);
    CopyTypefaceStyle(env, calls, *text);
    return !calls.Failed();
}

jboolean GxText_SetLine(JNIEnv* env, jobject self, jint line) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteLine);
    GxView* const view = text ? text->GetView() : nullptr;
    if (!view) return false;
    view->lineLimit = line;
    return true;
}

jboolean GxText_SetLayout(JNIEnv* env, jobject self, jobject javaLayout) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteLayout);
    const GxView* view = text ? text->GetView() : nullptr;
    if (!view) return false;
    const int handle = text->GetRuntimeHandle();
    if (!javaLayout) {
        __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "GxText_SetLayout - RH(%d) null", handle);
        return false;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "GxText_SetLayout - RH(%d) (%p)", handle,
                        static_cast<void*>(javaLayout));
    JavaMethods methods;
    if (!ResolveAll(env, javaLayout, kLayoutClass.methods, methods,
                    "GxText_SetLayout - Function ")) {
        return false;
    }
    const JavaCalls layout(env, javaLayout, methods);
    if (!CopyTextAndBackground(env, layout, *text)) return false;
    const jint lineCount = layout.Int(kLayoutClass["getLineCount"]);
    JavaLayoutLines lines(layout);
    const std::vector<GxLineInfo> placed =
        layout.Failed() ? std::vector<GxLineInfo>() : PlaceLines(lines, lineCount, *view);
    return !layout.Failed() && SetLines(*text, placed);
}

}  // namespace GxFontEffect
