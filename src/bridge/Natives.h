// The native methods of the three Java classes, under the names that they have there.
//
// A native finds the text object bound to its Java object, converts the arguments, makes one call
// and converts the result. Failures give false, -1, 0 or null. All of them may be called from any
// thread; one Java GxText is used from one thread at a time.
#pragma once

#include <jni.h>

namespace GxFontEffect {

// util.GxError. The code that the calling thread last recorded.
jint Error_GetError(JNIEnv*, jobject);

// font.FontManager. Both take font data for the whole process.
//
// Registers font bytes under a name.
jboolean GxFontManager_InsertFontData(JNIEnv*, jobject, jstring name, jbyteArray data);
// Takes over the system's font configuration, the first time; later ones are ignored and true.
jboolean GxFontManager_SetFontConfig(JNIEnv*, jobject, jobject config);

// GxText, the object's life. Except for these two every native below fails with error 19 when no
// text object is bound, and binds a fresh Java object.
//
// Releases the bound object; nothing on an unbound one. Later natives fail with error 19.
void GxText_finalize(JNIEnv*, jobject self);
void GxText_ClearAllTextEffect(JNIEnv*, jobject self);

// GxText, effects: the arguments of GxEffect's add operations; the effect's id, or -1.
jint GxText_AddInnerShadowTextEffect(JNIEnv*, jobject self, jfloat angle, jfloat distance,
                                     jfloat size, jint color, jfloat opacity);
jint GxText_AddOuterShadowTextEffect(JNIEnv*, jobject self, jfloat angle, jfloat distance,
                                     jfloat size, jint color, jfloat opacity);
jint GxText_AddOuterGlowTextEffect(JNIEnv*, jobject self, jfloat size, jint color, jfloat opacity);
jint GxText_AddStrokeTextEffect(JNIEnv*, jobject self, jfloat size, jint color, jfloat opacity,
                                jint cap, jint position);
// One stop per element; the arrays must be as long as each other.
jint GxText_AddLinearGradientTextEffect(JNIEnv*, jobject self, jfloat angle, jfloat scale,
                                        jintArray colors, jfloatArray opacities,
                                        jfloatArray positions, jfloat opacity);

// GxText, rendering. The image covers the view and the effect margins around it: 0xAARRGGBB, rows
// packed. Null when the render failed, also where the object keeps the frame before, and when no
// Java array can hold the image.
jintArray GxText_RenderTextEffect(JNIEnv*, jobject self);
// Width and height of the last render.
jintArray GxText_GetDrawingBitmapSize(JNIEnv*, jobject self);
// Margins in pixels.
jint GxText_GetEffectLeftOffset(JNIEnv*, jobject self);
jint GxText_GetEffectTopOffset(JNIEnv*, jobject self);
jint GxText_GetEffectRightOffset(JNIEnv*, jobject self);
jint GxText_GetEffectBottomOffset(JNIEnv*, jobject self);

// GxText, fonts: a file, bytes under a name, an asset of the application.
jboolean GxText_SetFont(JNIEnv*, jobject self, jstring path);
jboolean GxText_SetFont2(JNIEnv*, jobject self, jstring name, jbyteArray data);
jboolean GxText_SetFont3(JNIEnv*, jobject self, jobject assetManager, jstring name);
jboolean GxText_SetFontFamilyName(JNIEnv*, jobject self, jstring name);

// GxText, state of the Android widgets. Before each render, in this order: paint, view, line limit,
// layout. An exception that one of the objects throws ends the native and goes on to its caller.
jboolean GxText_SetPaint(JNIEnv*, jobject self, jobject paint);
jboolean GxText_SetView(JNIEnv*, jobject self, jobject view);
jboolean GxText_SetLine(JNIEnv*, jobject self, jint line);
jboolean GxText_SetLayout(JNIEnv*, jobject self, jobject layout);

}  // namespace GxFontEffect
