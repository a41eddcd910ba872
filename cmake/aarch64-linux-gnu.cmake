# Cross build for 64-bit ARM Linux with Debian's compiler; programs run under qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# The text libraries, from scripts/arm64-sysroot. What they need themselves lies beside them.
set(GXTEXT_SYSROOT "" CACHE PATH "Folder of libraries for 64-bit ARM")
set(libraries "${GXTEXT_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
list(APPEND CMAKE_PREFIX_PATH "${GXTEXT_SYSROOT}/usr")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${libraries}")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-rpath-link,${libraries}")
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-aarch64;-E;LD_LIBRARY_PATH=${libraries}")
