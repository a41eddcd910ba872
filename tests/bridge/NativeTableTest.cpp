#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bridge/Registration.h"
#include "support/LogCapture.h"

namespace GxFontEffect {
namespace {

// What the Java classes declare, in the order that they are registered in.
const std::vector<std::pair<std::string, std::string>> kNatives = {
    {"Error_GetError", "()I"},
    {"GxFontManager_InsertFontData", "(Ljava/lang/String;[B)Z"},
    {"GxFontManager_SetFontConfig", "(Landroid/text/FontConfig;)Z"},
    {"GxText_finalize", "()V"},
    {"GxText_AddInnerShadowTextEffect", "(FFFIF)I"},
    {"GxText_AddLinearGradientTextEffect", "(FF[I[F[FF)I"},
    {"GxText_AddOuterGlowTextEffect", "(FIF)I"},
    {"GxText_AddOuterShadowTextEffect", "(FFFIF)I"},
    {"GxText_AddStrokeTextEffect", "(FIFII)I"},
    {"GxText_ClearAllTextEffect", "()V"},
    {"GxText_RenderTextEffect", "()[I"},
    {"GxText_SetFont", "(Ljava/lang/String;)Z"},
    {"GxText_SetFont2", "(Ljava/lang/String;[B)Z"},
    {"GxText_SetFont3", "(Landroid/content/res/AssetManager;Ljava/lang/String;)Z"},
    {"GxText_SetPaint", "(Landroid/graphics/Paint;)Z"},
    {"GxText_SetLayout", "(Landroid/text/Layout;)Z"},
    {"GxText_SetLine", "(I)Z"},
    {"GxText_SetView", "(Landroid/widget/TextView;)Z"},
    {"GxText_GetDrawingBitmapSize", "()[I"},
    {"GxText_GetEffectLeftOffset", "()I"},
    {"GxText_GetEffectTopOffset", "()I"},
    {"GxText_GetEffectRightOffset", "()I"},
    {"GxText_GetEffectBottomOffset", "()I"},
    {"GxText_SetFontFamilyName", "(Ljava/lang/String;)Z"},
};

TEST(NativeTableTest, HoldsEveryNativeInOrder) {
    std::vector<std::pair<std::string, std::string>> table;
    std::set<void*> functions;
    for (const JNINativeMethod& native : NativeTable()) {
        table.emplace_back(native.name, native.signature);
        functions.insert(native.fnPtr);
    }
    EXPECT_EQ(table, kNatives);
    EXPECT_EQ(functions.size(), kNatives.size()) << "two entries share a function";
}

jint JNICALL refuseVersion(JavaVM*, void** env, jint) {
    *env = nullptr;
    return JNI_EVERSION;
}

TEST(NativeTableTest, LoadsNothingWithoutAnEnvironment) {
    JNIInvokeInterface_ functions{};
    functions.GetEnv = refuseVersion;
    JavaVM vm{&functions};
    for (JavaVM* machine : {&vm, static_cast<JavaVM*>(nullptr)}) {
        const gxtest::LogCapture log;
        EXPECT_EQ(LoadNatives(machine), 0);
        EXPECT_EQ(log.texts(), std::vector<std::string>{"GxText_JNI_OnLoad"});
        EXPECT_FALSE(Error_OnLoad(machine));
    }
}

}  // namespace
}  // namespace GxFontEffect
