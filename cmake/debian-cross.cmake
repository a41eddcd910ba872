# Cross build for ARM Linux with Debian's compiler; programs run under qemu. Included by the toolchain
# files, which set CMAKE_SYSTEM_PROCESSOR (qemu's name of the processor) and CMAKE_LIBRARY_ARCHITECTURE.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# The text libraries, from scripts/arm-sysroot. What they need themselves lies beside them.
set(GXTEXT_SYSROOT "" CACHE PATH "Folder of libraries for the processor")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES GXTEXT_SYSROOT)
set(libraries "${GXTEXT_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
list(APPEND CMAKE_PREFIX_PATH "${GXTEXT_SYSROOT}/usr")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${GXTEXT_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR} "${libraries}/pkgconfig")
unset(ENV{PKG_CONFIG_PATH})
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${libraries}")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-rpath-link,${libraries}")
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-${CMAKE_SYSTEM_PROCESSOR};-E;LD_LIBRARY_PATH=${libraries}")
