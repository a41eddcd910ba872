// The tests' view into the library from inside a Java runtime.
//
// It is preloaded, so that what it defines comes before what the library is linked to: it records
// the log and makes allocations fail. It also stands between the library and JNI on the thread that
// installed it, to hide classes and methods, to make functions fail, to step in where Java code may
// run and to count what is taken and given back; and it tells what a text object holds.
#include <android/log.h>
#include <dlfcn.h>
#include <hwui/Paint.h>
#include <jni.h>
#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "base/Error.h"
#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "font/FontManager.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

#define GX_PROBE(result, name) extern "C" JNIEXPORT result JNICALL Java_gxtest_Probe_##name

namespace {

using GxFontEffect::GxTextObject;

// --- log ---

// Lines of the thread that installed the probe. A log of all threads would need a lock, which would
// hide races between them from the thread sanitizer.
thread_local std::vector<std::string>* logLines = nullptr;

// --- allocations ---

thread_local int allocationsLeft = -1;  // before one fails; negative while none shall
thread_local bool allocationFailed = false;

// The probe's own allocations do not count.
class Uncounted {
public:
    Uncounted() : left_(allocationsLeft) { allocationsLeft = -1; }
    ~Uncounted() { allocationsLeft = left_; }

private:
    int left_;
};

// --- JNI ---

const JNINativeInterface_* real = nullptr;
JNINativeInterface_ hooked;
std::set<std::string> hidden;
std::map<std::string, int> callsLeft;  // before a function fails
std::map<std::string, int> outstanding;
std::vector<std::string> registrations;

bool shallFail(const char* function) {
    const Uncounted uncounted;
    const auto entry = callsLeft.find(function);
    if (entry == callsLeft.end() || --entry->second > 0) return false;
    callsLeft.erase(entry);
    return true;
}

void count(const char* what, int change) {
    const Uncounted uncounted;
    outstanding[what] += change;
}

std::nullptr_t outOfMemory(JNIEnv* env) {
    env->ThrowNew(env->FindClass("java/lang/OutOfMemoryError"), "injected");
    return nullptr;
}

char hiddenName[] = "hidden";  // no class has it

std::string utf8Of(JNIEnv* env, jstring string) {
    const char* chars = real->GetStringUTFChars(env, string, nullptr);
    std::string text = chars ? chars : "";
    if (chars) real->ReleaseStringUTFChars(env, string, chars);
    return text;
}

jint JNICALL registerNatives(JNIEnv* env, jclass type, const JNINativeMethod* methods, jint count) {
    jclass classClass = env->GetObjectClass(type);
    jmethodID getName = real->GetMethodID(env, classClass, "getName", "()Ljava/lang/String;");
    auto name = static_cast<jstring>(env->CallObjectMethod(type, getName));
    if (env->ExceptionCheck()) return JNI_ERR;
    registrations.push_back(utf8Of(env, name));
    std::vector<JNINativeMethod> table(methods, methods + count);
    for (JNINativeMethod& method : table) {
        if (hidden.count(method.name)) method.name = hiddenName;
    }
    return real->RegisterNatives(env, type, table.data(), count);
}

// What runs in the place of the application's code when a native reaches Java.
struct Interruption {
    jobject action = nullptr;  // a Runnable, global
    int reachesLeft = 0;       // before it runs; 0 while none shall

    void reach(JNIEnv* env) {
        if (reachesLeft == 0 || --reachesLeft > 0) return;
        const Uncounted uncounted;
        jclass runnable = real->FindClass(env, "java/lang/Runnable");
        real->CallVoidMethod(env, action, real->GetMethodID(env, runnable, "run", "()V"));
        real->ExceptionCheck(env);  // the runtime's checks want it asked; the native asks as well
        real->DeleteLocalRef(env, runnable);
    }
} interruption;

// Which method throws what in place of running.
struct {
    std::map<jmethodID, std::string> names;  // of those that were looked up
    std::string method;                      // empty while none shall
    jthrowable error = nullptr;              // global

    bool throws(JNIEnv* env, jmethodID id) {
        const Uncounted uncounted;
        return !method.empty() && names[id] == method && real->Throw(env, error) == JNI_OK;
    }
} thrower;

// A name that no class has stands in for a hidden one.
const char* nameUnlessHidden(const char* name, const char* instead) {
    const Uncounted uncounted;
    return hidden.count(name) ? instead : name;
}

// Lookups may load and initialise a class, which runs code of that class and of its loader.
jmethodID JNICALL getMethodId(JNIEnv* env, jclass type, const char* name, const char* signature) {
    interruption.reach(env);
    const jmethodID id = real->GetMethodID(env, type, nameUnlessHidden(name, "hidden"), signature);
    const Uncounted uncounted;
    if (id) thrower.names[id] = name;
    return id;
}
jmethodID JNICALL getStaticMethodId(JNIEnv* env, jclass type, const char* name,
                                    const char* signature) {
    return real->GetStaticMethodID(env, type, nameUnlessHidden(name, "hidden"), signature);
}
jfieldID JNICALL getFieldId(JNIEnv* env, jclass type, const char* name, const char* signature) {
    interruption.reach(env);
    return real->GetFieldID(env, type, nameUnlessHidden(name, "hidden"), signature);
}
jclass JNICALL findClass(JNIEnv* env, const char* name) {
    interruption.reach(env);
    return real->FindClass(env, nameUnlessHidden(name, "hidden/Class"));
}

#define GX_HOOK_CALL(Type, type)                                                            \
    type JNICALL call##Type(JNIEnv* env, jobject object, jmethodID method, va_list given) { \
        interruption.reach(env);                                                            \
        if (thrower.throws(env, method)) return type();                                     \
        return real->Call##Type##MethodV(env, object, method, given);                       \
    }
GX_HOOK_CALL(Object, jobject)
GX_HOOK_CALL(Boolean, jboolean)
GX_HOOK_CALL(Int, jint)
GX_HOOK_CALL(Float, jfloat)
GX_HOOK_CALL(Void, void)
jobject JNICALL newObject(JNIEnv* env, jclass type, jmethodID constructor, va_list given) {
    interruption.reach(env);
    return real->NewObjectV(env, type, constructor, given);
}

const char* JNICALL getStringChars(JNIEnv* env, jstring string, jboolean* copy) {
    if (shallFail("GetStringUTFChars")) return outOfMemory(env);
    count("chars", 1);
    return real->GetStringUTFChars(env, string, copy);
}
void JNICALL releaseStringChars(JNIEnv* env, jstring string, const char* chars) {
    count("chars", -1);
    real->ReleaseStringUTFChars(env, string, chars);
}
jintArray JNICALL newIntArray(JNIEnv* env, jsize length) {
    if (shallFail("NewIntArray")) return outOfMemory(env);
    return real->NewIntArray(env, length);
}

#define GX_HOOK_ELEMENTS(Type, type)                                                     \
    type* JNICALL get##Type##Elements(JNIEnv* env, type##Array array, jboolean* copy) {  \
        if (shallFail("Get" #Type "ArrayElements")) return outOfMemory(env);             \
        count("elements", 1);                                                            \
        return real->Get##Type##ArrayElements(env, array, copy);                         \
    }                                                                                    \
    void JNICALL release##Type##Elements(JNIEnv* env, type##Array array, type* elements, \
                                         jint mode) {                                    \
        count("elements", -1);                                                           \
        real->Release##Type##ArrayElements(env, array, elements, mode);                  \
    }
GX_HOOK_ELEMENTS(Int, jint)
GX_HOOK_ELEMENTS(Float, jfloat)
GX_HOOK_ELEMENTS(Byte, jbyte)

// --- Java values ---

jobjectArray toJava(JNIEnv* env, const std::vector<std::string>& texts) {
    jclass stringClass = real->FindClass(env, "java/lang/String");
    jobjectArray array =
        env->NewObjectArray(static_cast<jsize>(texts.size()), stringClass, nullptr);
    for (size_t i = 0; i < texts.size(); i++) {
        jstring text = env->NewStringUTF(texts[i].c_str());
        env->SetObjectArrayElement(array, static_cast<jsize>(i), text);
        env->DeleteLocalRef(text);
    }
    return array;
}

__attribute__((format(printf, 1, 2))) std::string format(const char* form, ...) {
    char text[2048];
    va_list arguments;
    va_start(arguments, form);
    vsnprintf(text, sizeof(text), form, arguments);
    va_end(arguments);
    return text;
}

GxTextObject* find(jint handle) {
    return GxTextObject::FindGxTextObject(handle);
}

}  // namespace

extern "C" JNIEXPORT int __android_log_print(int priority, const char* tag, const char* form, ...) {
    char text[2048];
    va_list arguments;
    va_start(arguments, form);
    const int length = vsnprintf(text, sizeof(text), form, arguments);
    va_end(arguments);
    const char* letter = priority == ANDROID_LOG_ERROR   ? "E"
                         : priority == ANDROID_LOG_DEBUG ? "D"
                                                         : "?";
    if (!logLines) return length;
    const Uncounted uncounted;
    logLines->push_back(std::string(letter) + "/" + tag + ": " + text);
    return length;
}

// Whatever frees it, free() does: the standard library's own pair rests on malloc as well.
void* operator new(size_t size) {
    if (allocationsLeft > 0 && --allocationsLeft == 0) {
        allocationsLeft = -1;
        allocationFailed = true;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

// Without one of its own the runtime would find the library's behind it.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM*, void*) {
    return JNI_VERSION_1_2;
}

GX_PROBE(void, install)(JNIEnv* env, jclass) {
    logLines = new std::vector<std::string>;  // written to until the process ends
    real = env->functions;
    hooked = *real;
    hooked.RegisterNatives = registerNatives;
    hooked.GetMethodID = getMethodId;
    hooked.GetStaticMethodID = getStaticMethodId;
    hooked.GetFieldID = getFieldId;
    hooked.FindClass = findClass;
    hooked.CallObjectMethodV = callObject;
    hooked.CallBooleanMethodV = callBoolean;
    hooked.CallIntMethodV = callInt;
    hooked.CallFloatMethodV = callFloat;
    hooked.CallVoidMethodV = callVoid;
    hooked.NewObjectV = newObject;
    hooked.GetStringUTFChars = getStringChars;
    hooked.ReleaseStringUTFChars = releaseStringChars;
    hooked.NewIntArray = newIntArray;
    hooked.GetIntArrayElements = getIntElements;
    hooked.ReleaseIntArrayElements = releaseIntElements;
    hooked.GetFloatArrayElements = getFloatElements;
    hooked.ReleaseFloatArrayElements = releaseFloatElements;
    hooked.GetByteArrayElements = getByteElements;
    hooked.ReleaseByteArrayElements = releaseByteElements;
    env->functions = &hooked;
}

GX_PROBE(void, hide)(JNIEnv* env, jclass, jstring name) {
    hidden.insert(utf8Of(env, name));
}

GX_PROBE(void, failCall)(JNIEnv* env, jclass, jstring function, jint which) {
    callsLeft[utf8Of(env, function)] = which;
}

GX_PROBE(void, throwFrom)(JNIEnv* env, jclass, jstring method, jthrowable error) {
    env->DeleteGlobalRef(thrower.error);
    thrower.method = utf8Of(env, method);
    thrower.error = static_cast<jthrowable>(env->NewGlobalRef(error));
}

GX_PROBE(void, interrupt)(JNIEnv* env, jclass, jint which, jobject action) {
    interruption = {env->NewGlobalRef(action), which};
}

GX_PROBE(jboolean, endInterruption)(JNIEnv* env, jclass) {
    env->DeleteGlobalRef(interruption.action);
    const bool reached = interruption.reachesLeft == 0;
    interruption = {};
    return reached;
}

GX_PROBE(void, reset)(JNIEnv*, jclass) {
    hidden.clear();
    callsLeft.clear();
    thrower.method.clear();
}

GX_PROBE(jint, outstanding)(JNIEnv*, jclass) {
    return outstanding["chars"] + outstanding["elements"];
}

GX_PROBE(void, settle)(JNIEnv*, jclass, jint strings) {
    outstanding["chars"] -= strings;
}

GX_PROBE(jobjectArray, registrations)(JNIEnv* env, jclass) {
    return toJava(env, registrations);
}

GX_PROBE(jint, loadAgain)(JNIEnv* env, jclass) {
    Dl_info library;
    if (!dladdr(reinterpret_cast<void*>(&GxTextObject::FindGxTextObject), &library)) return 0;
    void* const handle = dlopen(library.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    auto* const onLoad = reinterpret_cast<jint (*)(JavaVM*, void*)>(dlsym(handle, "JNI_OnLoad"));
    JavaVM* vm = nullptr;
    env->GetJavaVM(&vm);
    const jint version = onLoad ? onLoad(vm, nullptr) : 0;
    dlclose(handle);
    return version;
}

// What malloc has given out and not got back.
GX_PROBE(jlong, nativeBytes)(JNIEnv*, jclass) {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<jlong>(info.uordblks + info.hblkhd);
}

// Nanoseconds of `count` renders without the edge to Java.
GX_PROBE(jlong, renderNanos)(JNIEnv*, jclass, jint handle, jint count) {
    GxTextObject* text = find(handle);
    const GxFontEffect::GxView* view = text->GetView();
    const auto start = std::chrono::steady_clock::now();
    for (jint i = 0; i < count; i++) {
        text->RenderTextEffect(view->GetBitmapWidth(), view->GetBitmapHeight());
    }
    return std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count();
}

GX_PROBE(jobjectArray, takeLog)(JNIEnv* env, jclass) {
    std::vector<std::string> taken;
    taken.swap(*logLines);
    return toJava(env, taken);
}

GX_PROBE(void, failAllocation)(JNIEnv*, jclass, jint which) {
    allocationFailed = false;
    allocationsLeft = which;
}

GX_PROBE(jboolean, endAllocationFailure)(JNIEnv*, jclass) {
    allocationsLeft = -1;
    return allocationFailed;
}

GX_PROBE(void, logEverything)(JNIEnv*, jclass, jboolean everything) {
    GxFontEffect::GxLog::DEBUG_ENABLE = everything != JNI_FALSE;
}

GX_PROBE(void, setError)(JNIEnv*, jclass, jint code) {
    GxFontEffect::Error::SetError(static_cast<unsigned long>(code));
}

GX_PROBE(void, race)(JNIEnv*, jclass) {
    // Each of the two waits for the other in a way that orders nothing between them: one that is
    // late would be ordered behind the other by the runtime's own locks, and race no more.
    static std::atomic<int> arrived = 0;
    arrived.fetch_add(1, std::memory_order_relaxed);
    while (arrived.load(std::memory_order_relaxed) < 2) std::this_thread::yield();
    static volatile int shared = 0;
    for (int i = 0; i < 1'000; i++) shared = shared + 1;
}

GX_PROBE(jboolean, buildTypeSettled)(JNIEnv*, jclass) {
    return GxFontEffect::GxLog::IsCheckedBuildType();
}

GX_PROBE(void, forgetFontConfig)(JNIEnv*, jclass) {
    GxFontEffect::FontManager::GetInstance().ClearFontFamilies();
}

GX_PROBE(jstring, paint)(JNIEnv* env, jclass, jint handle) {
    const android::Paint paint = find(handle)->GetPaint();
    const SkFont& font = paint.getSkFont();
    return env->NewStringUTF(
        format("size %g, scale %g, skew %g, bold %d, spacing %g, variant %d, flags %x, features "
               "'%s', locales %u, align %d",
               font.getSize(), font.getScaleX(), font.getSkewX(), font.isEmbolden(),
               paint.getLetterSpacing(), static_cast<int>(paint.getFamilyVariant()),
               paint.getJavaFlags(), paint.getFontFeatureSettings().c_str(),
               paint.getMinikinLocaleListId(), static_cast<int>(paint.getTextAlign()))
            .c_str());
}

GX_PROBE(jstring, view)(JNIEnv* env, jclass, jint handle) {
    const GxTextObject* text = find(handle);
    const GxFontEffect::GxView* view = text->GetView();
    return env->NewStringUTF(
        format("%d x %d, padding %d %d %d %d, gravity %x, maxLines %d, limit %d, color %08x, bold "
               "%d, italic %d",
               view->width, view->height, view->paddingLeft, view->paddingTop, view->paddingRight,
               view->paddingBottom, view->gravity, view->maxLines, view->lineLimit,
               text->GetTextColor(), text->isBoldTextStyle(), text->isItalicTextStyle())
            .c_str());
}

GX_PROBE(jintArray, text)(JNIEnv* env, jclass, jint handle) {
    const GxFontEffect::GxString* text = find(handle)->GetText();
    if (!text) return nullptr;
    std::vector<jint> characters;
    for (int i = 0; i < text->GetLength(); i++) characters.push_back(text->GetPointer()[i]);
    const jsize count = static_cast<jsize>(characters.size());
    jintArray array = real->NewIntArray(env, count);
    env->SetIntArrayRegion(array, 0, count, characters.data());
    return array;
}

// "x,y start-end [left top right bottom]" for each line.
GX_PROBE(jobjectArray, lines)(JNIEnv* env, jclass, jint handle) {
    const GxFontEffect::List* list = find(handle)->GetLineInfo();
    std::vector<std::string> lines;
    for (int i = 0; i < list->GetCount(); i++) {
        const auto* line = static_cast<const GxFontEffect::GxLineInfo*>(list->Get(i));
        lines.push_back(format("%d,%d %d-%d [%d %d %d %d]", line->x, line->y, line->start,
                               line->end, line->rect.left, line->rect.top, line->rect.right,
                               line->rect.bottom));
    }
    return toJava(env, lines);
}
