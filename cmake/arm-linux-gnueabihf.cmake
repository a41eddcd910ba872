# 32-bit ARM Linux with what every armeabi-v7a of Android has: ARMv7-A and NEON. By a newer Clang, the
# family that the NDK's compiler belongs to, with GCC's libraries.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
include("${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake")
foreach(language C CXX)
    set(CMAKE_${language}_COMPILER_TARGET ${CMAKE_LIBRARY_ARCHITECTURE})
    set(CMAKE_${language}_FLAGS_INIT "-mfpu=neon")
endforeach()
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
