# Finds jni.h: JNI_FOUND, JNI_INCLUDE_DIRS. Without a JAVA_HOME, in the JDK that javac on the path
# belongs to: FindJNI looks into few places of its own.
if(NOT ANDROID AND NOT JAVA_HOME AND NOT DEFINED ENV{JAVA_HOME})
    find_program(GXTEXT_JAVAC javac)
    mark_as_advanced(GXTEXT_JAVAC)
    if(GXTEXT_JAVAC)
        file(REAL_PATH "${GXTEXT_JAVAC}" JAVA_HOME)
        cmake_path(GET JAVA_HOME PARENT_PATH JAVA_HOME)
        cmake_path(GET JAVA_HOME PARENT_PATH JAVA_HOME)
    endif()
endif()
# Only the header is needed. The NDK comes with it; elsewhere a component has to be named, for without
# one the window toolkit is looked for too.
if(ANDROID)
    find_package(JNI)
else()
    find_package(JNI COMPONENTS JVM)
endif()
