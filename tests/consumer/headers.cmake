# Compiles the installed headers, with no other folder than theirs to find headers in.
#   cmake -DPREFIX=... -DBUILD=... -DCOMPILER=... -P headers.cmake
file(GLOB_RECURSE headers RELATIVE "${PREFIX}/include/gxtext" "${PREFIX}/include/gxtext/*.h")
list(TRANSFORM headers REPLACE "^platform/" "")
list(TRANSFORM headers REPLACE "^(.+)$" "#include <\\1>\n")
list(JOIN headers "" source)
file(WRITE "${BUILD}/headers.cpp" "${source}")
execute_process(COMMAND "${COMPILER}" -std=c++20 -Wall -Wextra -Werror -fsyntax-only "-I${PREFIX}/include/gxtext"
    "-I${PREFIX}/include/gxtext/platform" "${BUILD}/headers.cpp" RESULT_VARIABLE result)
if(NOT headers OR NOT result EQUAL 0)
    message(FATAL_ERROR "the installed headers do not compile")
endif()
