// Starts a Java runtime inside a program of ours, for what has to be linked into the program
// itself: the thread sanitizer cannot be preloaded into `java`.
//
//     launcher OPTION... -cp CLASS_PATH CLASS [ARGUMENT]...
#include <jni.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

// Runs `main` of a class; false with the exception on the error output when one comes out of it.
bool runMain(JNIEnv* env, std::string className, const std::vector<std::string>& arguments) {
    for (char& c : className) c = c == '.' ? '/' : c;
    jclass mainClass = env->FindClass(className.c_str());
    jmethodID main =
        mainClass ? env->GetStaticMethodID(mainClass, "main", "([Ljava/lang/String;)V") : nullptr;
    if (main) {
        jobjectArray strings = env->NewObjectArray(static_cast<jsize>(arguments.size()),
                                                   env->FindClass("java/lang/String"), nullptr);
        for (size_t i = 0; i < arguments.size(); i++) {
            env->SetObjectArrayElement(strings, static_cast<jsize>(i),
                                       env->NewStringUTF(arguments[i].c_str()));
        }
        env->CallStaticVoidMethod(mainClass, main, strings);
    }
    if (!env->ExceptionCheck()) return true;
    env->ExceptionDescribe();
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    std::vector<std::string> options;
    size_t next = 0;
    for (; next < words.size() && words[next][0] == '-'; next++) {
        if (words[next] == "-cp" && next + 1 < words.size()) {
            options.push_back("-Djava.class.path=" + words[++next]);
        } else {
            options.push_back(words[next]);
        }
    }
    if (next == words.size()) {
        std::fprintf(stderr, "usage: launcher OPTION... -cp CLASS_PATH CLASS [ARGUMENT]...\n");
        return 2;
    }

    std::vector<JavaVMOption> given(options.size());
    for (size_t i = 0; i < options.size(); i++) given[i].optionString = options[i].data();
    JavaVMInitArgs arguments = {JNI_VERSION_10, static_cast<jint>(given.size()), given.data(),
                                JNI_FALSE};
    JavaVM* vm = nullptr;
    JNIEnv* env = nullptr;
    if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&env), &arguments) != JNI_OK) return 2;
    const bool done = runMain(env, words[next], {words.begin() + 1 + next, words.end()});
    vm->DestroyJavaVM();
    return done ? 0 : 1;
}
