# Finds jni.h: JNI_FOUND, JNI_INCLUDE_DIRS. The NDK's compiler knows where it is. Elsewhere, without a
# JAVA_HOME, in the JDK that javac on the path belongs to: FindJNI looks into few places of its own.
if(ANDROID)
    set(JNI_FOUND TRUE)
    set(JNI_INCLUDE_DIRS "")
    return()
endif()
if(NOT JAVA_HOME AND NOT DEFINED ENV{JAVA_HOME})
    find_program(GXTEXT_JAVAC javac)
    mark_as_advanced(GXTEXT_JAVAC)
    if(GXTEXT_JAVAC)
        file(REAL_PATH "${GXTEXT_JAVAC}" JAVA_HOME)
        cmake_path(GET JAVA_HOME PARENT_PATH JAVA_HOME)
        cmake_path(GET JAVA_HOME PARENT_PATH JAVA_HOME)
    endif()
endif()
# Only the header is needed, but a component has to be named: without one the window toolkit is looked
# for too.
find_package(JNI COMPONENTS JVM)
