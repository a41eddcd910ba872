// Natives beside the table: those of the Java class TextExtension. The runtime looks them up by
// their exported names when they are first called, so that a Java side without the class loses
// nothing else.
//
// No C++ exception leaves them and none leaves a Java exception.
#pragma once

#include <jni.h>

#include <exception>

namespace GxFontEffect {

// `call()`; when it throws, `onFailure(message)`.
template <typename Call, typename OnFailure>
auto Contained(Call call, OnFailure onFailure) noexcept -> decltype(call()) {
    try {
        return call();
    } catch (const std::exception& error) {
        return onFailure(error.what());
    } catch (...) {
        return onFailure("unknown exception");
    }
}

}  // namespace GxFontEffect

#define GX_EXTENSION(result, name) \
    extern "C" JNIEXPORT result JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_##name

extern "C" {

// Mistakes are UTF-8, one after the other, each of three strings that end with a zero byte: the
// place as a JSON path, the reason, and what is allowed, which may be empty. Null without any.

// What is wrong with the text of a style file (UTF-8).
JNIEXPORT jbyteArray JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_check(JNIEnv* env,
                                                                                  jclass,
                                                                                  jbyteArray json);

// Gives the text object (a GxText) a style's effects, repeats allowed, with their silhouettes,
// spans and fills, its fill opacity, canvas, shape of background boxes and way with emoji; of the
// rest of the style nothing. `lengths` holds size and distance of each effect, which may be longer
// than a file allows, up to what the filters take; what an effect has not is not read. `switches`
// is the sum of Switch values. The picture of the pattern called names[i] is pictures[i]:
// 0xAARRGGBB, straight, rows packed, widths[i] to a row. After a mistake the object has no effects,
// or those it had.
JNIEXPORT jbyteArray JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_dress(
    JNIEnv* env, jclass, jobject text, jbyteArray json, jfloatArray lengths, jint switches,
    jobjectArray names, jintArray widths, jobjectArray pictures);

// Multiplies the alpha of the text colour, which fades the whole picture, until the next SetView.
JNIEXPORT void JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_fade(JNIEnv* env, jclass,
                                                                           jobject text,
                                                                           jfloat opacity);

// Makes room for effects and, with whole ink, for what reaches beyond the view; writes width,
// height and the margins left, top, right, bottom into `frame`, which has six elements. False when
// there is no text object, view or memory, or a side has no 31 bits.
JNIEXPORT jboolean JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_measure(JNIEnv* env,
                                                                                  jclass,
                                                                                  jobject text,
                                                                                  jintArray frame);

// The picture with that room: 0xAARRGGBB, straight, rows packed; `frame` as above. Null when it
// cannot be drawn or no Java array holds it.
JNIEXPORT jintArray JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_render(JNIEnv* env,
                                                                                  jclass,
                                                                                  jobject text,
                                                                                  jintArray frame);

// Makes a family of fonts, kept until the process ends, and gives its number, or -1 when one of
// them is no font. A font is a file or the name of inserted data with its place in a collection,
// weight (1-1000), slant and axis settings ("'wght' 650", may be empty); `locales` are the BCP 47
// tags that the family is preferred for, `variant` is a minikin::FamilyVariant.
JNIEXPORT jint JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_addFamily(
    JNIEnv* env, jclass, jobjectArray files, jintArray indices, jintArray weights,
    jbooleanArray italics, jobjectArray variations, jstring locales, jint variant);

// Whether one of these families, negative numbers aside, has each character that wants a glyph.
JNIEXPORT jboolean JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_covers(JNIEnv* env,
                                                                                 jclass,
                                                                                 jintArray families,
                                                                                 jstring text);

// Draws the text with these families, in order of preference, in place of all other fonts. `weight`
// chooses among the fonts of a family; 0 is that of the first font. False for a number that is
// none.
JNIEXPORT jboolean JNICALL Java_com_norvale_android_sdk_gxe_TextExtension_setFamilies(
    JNIEnv* env, jclass, jobject text, jintArray families, jint weight);

}  // extern "C"

namespace GxFontEffect {

enum Switch : jint {
    kSwitchWholeInk = 1,     // GxTextObject::setKeepsWholeInk
    kSwitchLetInsideOut = 2  // GxEffect::setConfineInside(false)
};

}  // namespace GxFontEffect
