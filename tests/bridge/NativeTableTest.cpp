#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "bridge/Registration.h"
#include "support/LogCapture.h"

namespace GxFontEffect {
namespace {

TEST(NativeTableTest, EveryNativeHasAFunctionOfItsOwn) {
    std::set<void*> functions;
    for (const JNINativeMethod& native : NativeTable()) functions.insert(native.fnPtr);
    EXPECT_EQ(functions.size(), NativeTable().size());
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
