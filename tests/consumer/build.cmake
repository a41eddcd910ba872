# Builds a user's project, runs its program, and checks that the program needs no library matching FORBIDDEN and, with
# NEEDED, one that matches that.
#   cmake -DCOMPONENT=... -DBUILD=... -DCOMPILER=... [-DPREFIX=installed tree -DVERSION=... [-DPKG_CONFIG=program]
#       -DPKG_CONFIG_FOLDER=...] [-DGXTEXT_SOURCE_DIR=...] [-DFORBIDDEN=regex] [-DNEEDED=regex] [-DEXTRA=-D...]
#       [-DKEEP=ON: goes on in the tree that BUILD is] -P build.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# flags(<out> <option>...): what pkg-config says of the component, as a list.
function(flags out)
    run(${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${PREFIX}/${PKG_CONFIG_FOLDER}" "${PKG_CONFIG}" ${ARGN}
        "gxtext-${COMPONENT} = ${VERSION}")
    separate_arguments(output UNIX_COMMAND "${output}")
    set(${out} "${output}" PARENT_SCOPE)
endfunction()

if(NOT KEEP)
    file(REMOVE_RECURSE "${BUILD}")
endif()
if(PKG_CONFIG)
    flags(cflags --cflags)
    flags(libs --libs)
    file(MAKE_DIRECTORY "${BUILD}")
    run("${COMPILER}" -std=c++20 "${CMAKE_CURRENT_LIST_DIR}/${COMPONENT}.cpp" -o "${BUILD}/consumer" ${cflags} ${libs})
else()
    # What counts is what is found and linked: compiled with the least effort.
    run(${CMAKE_COMMAND} -S "${CMAKE_CURRENT_LIST_DIR}/project" -B "${BUILD}" -G Ninja "-DCOMPONENT=${COMPONENT}"
        "-DGXTEXT_SOURCE_DIR=${GXTEXT_SOURCE_DIR}" "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DVERSION=${VERSION}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 ${EXTRA})
    run(${CMAKE_COMMAND} --build "${BUILD}" --target consumer)
endif()
run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${PREFIX}/${PKG_CONFIG_FOLDER}/.." "${BUILD}/consumer")
run(readelf -d "${BUILD}/consumer")
if(FORBIDDEN AND output MATCHES "NEEDED[^\n]*(${FORBIDDEN})")
    message(FATAL_ERROR "links ${CMAKE_MATCH_1}:\n${output}")
endif()
if(NEEDED AND NOT output MATCHES "NEEDED[^\n]*(${NEEDED})")
    message(FATAL_ERROR "does not link ${NEEDED}:\n${output}")
endif()
