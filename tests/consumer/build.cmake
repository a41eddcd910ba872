# Builds a parent project that uses the library as a subdirectory, runs its program, and checks that the program
# needs no library matching FORBIDDEN.
#   cmake -DSOURCE=... -DBUILD=... -DGXTEXT_SOURCE_DIR=... -DCOMPILER=... [-DFORBIDDEN=regex] [-DEXTRA=-D...] -P build.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${BUILD}")
run(${CMAKE_COMMAND} -S "${SOURCE}" -B "${BUILD}" -G Ninja "-DGXTEXT_SOURCE_DIR=${GXTEXT_SOURCE_DIR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" ${EXTRA})
run(${CMAKE_COMMAND} --build "${BUILD}")
run("${BUILD}/consumer")
if(FORBIDDEN)
    run(readelf -d "${BUILD}/consumer")
    if(output MATCHES "NEEDED[^\n]*(${FORBIDDEN})")
        message(FATAL_ERROR "links ${CMAKE_MATCH_1}:\n${output}")
    endif()
endif()
