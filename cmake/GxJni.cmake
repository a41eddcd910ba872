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
find_package(JNI COMPONENTS JVM)
