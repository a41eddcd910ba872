# The libraries that users link: which objects each is made of, which headers belong to it, what it needs. Static, or
# shared with BUILD_SHARED_LIBS, and installed with what find_package and pkg-config read.
#
# Everything within the project links the targets gxtext_<name>, which are always static: tests and the library for Java
# reach what a shared library hides. The libraries here are put together from their objects.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(gxtext_install_default OFF)
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CROSSCOMPILING AND GXTEXT_PLATFORM STREQUAL "portable")
    set(gxtext_install_default ON)
endif()
option(GXTEXT_INSTALL "Install the libraries, their headers, the program and its manual" ${gxtext_install_default})

# Before 1.0.0 each minor version may change the interface.
set(GXTEXT_SOVERSION ${PROJECT_VERSION_MAJOR})
set(gxtext_compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(GXTEXT_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    set(gxtext_compatibility SameMinorVersion)
endif()

set(gxtext_headers "${CMAKE_INSTALL_INCLUDEDIR}/gxtext")
set(gxtext_platform_headers "${gxtext_headers}/platform")
set(gxtext_package "${CMAKE_INSTALL_LIBDIR}/cmake/gxtext")
set(gxtext_pkgconfig "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# gxtext_component(<name> DESCRIPTION <text> HEADERS <file>... [PLATFORM_HEADERS <file>...]
#     [ON <component>...] [OBJECTS <target>...] [MODULES <pkg-config module>...])
#
# gxtext::<name>, and libgxtext_<name> of the objects of gxtext_<name> and of OBJECTS. Does nothing when there is no
# target gxtext_<name>. HEADERS are relative to src/, PLATFORM_HEADERS to platform/include/: those that users include
# and those that these include. ON: components whose headers and functions it uses. MODULES: outside libraries that only
# its code uses, as "name" or "name>=version".
function(gxtext_component name)
    if(NOT TARGET gxtext_${name})
        return()
    endif()
    if(TARGET gxtext::${name})
        message(FATAL_ERROR "gxtext::${name} is made by gxtext_component: no ALIAS beside gxtext_${name}")
    endif()
    cmake_parse_arguments(arg "" "DESCRIPTION" "HEADERS;PLATFORM_HEADERS;ON;OBJECTS;MODULES" ${ARGN})
    if(NOT BUILD_SHARED_LIBS)
        add_library(gxtext::${name} ALIAS gxtext_${name})
        if(NOT GXTEXT_INSTALL)
            return()
        endif()
    endif()

    set(library gxtext_${name}_library)
    set(objects "")
    foreach(target gxtext_${name} ${arg_OBJECTS})
        list(APPEND objects $<TARGET_OBJECTS:${target}>)
    endforeach()
    add_library(${library} ${objects})
    set_target_properties(${library} PROPERTIES
        LINKER_LANGUAGE CXX
        OUTPUT_NAME gxtext_${name}
        EXPORT_NAME ${name}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${GXTEXT_SOVERSION}
        INSTALL_RPATH "$ORIGIN"
        ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib"
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
    target_compile_features(${library} INTERFACE cxx_std_20)
    target_include_directories(${library} INTERFACE
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>" "$<INSTALL_INTERFACE:${gxtext_headers}>")
    if(arg_PLATFORM_HEADERS)
        target_include_directories(${library} INTERFACE
            "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/include>"
            "$<INSTALL_INTERFACE:${gxtext_platform_headers}>")
    endif()
    foreach(component ${arg_ON})
        target_link_libraries(${library} PUBLIC gxtext_${component}_library)
    endforeach()
    target_link_libraries(${library} PRIVATE AndroidLog::AndroidLog)
    if(arg_MODULES)
        find_package(PkgConfig REQUIRED)
        pkg_check_modules(gxtext_${name}_modules REQUIRED QUIET IMPORTED_TARGET ${arg_MODULES})
        target_link_libraries(${library} PRIVATE PkgConfig::gxtext_${name}_modules)
    endif()
    if(BUILD_SHARED_LIBS)
        add_library(gxtext::${name} ALIAS ${library})
        gxtext_limit_exports(${library})
    endif()
    if(GXTEXT_INSTALL)
        gxtext_install_component(${name})
    endif()
endfunction()

# A shared library shows the classes that are marked for it; what the linked libraries and the templates of the
# standard library would add stays inside.
function(gxtext_limit_exports library)
    set(map "${PROJECT_BINARY_DIR}/exports.map")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/exports.map.in" "${map}" @ONLY)
    set_target_properties(${library} PROPERTIES LINK_DEPENDS "${map}")
    target_link_options(${library} PRIVATE
        "-Wl,--version-script=${map}" -Wl,-z,relro,-z,now,-z,noexecstack -Wl,-Bsymbolic-functions)
    # A sanitizer's runtime is part of the program, not of the library.
    if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
        target_link_options(${library} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()

# The part of gxtext_component that installs; reads its variables.
function(gxtext_install_component name)
    install(TARGETS ${library} EXPORT gxtext-${name})
    install(EXPORT gxtext-${name} NAMESPACE gxtext:: DESTINATION "${gxtext_package}" FILE gxtext-${name}.cmake)
    foreach(header ${arg_HEADERS})
        cmake_path(GET header PARENT_PATH folder)
        install(FILES "${PROJECT_SOURCE_DIR}/src/${header}" DESTINATION "${gxtext_headers}/${folder}")
    endforeach()
    foreach(header ${arg_PLATFORM_HEADERS})
        cmake_path(GET header PARENT_PATH folder)
        install(FILES "${PROJECT_SOURCE_DIR}/platform/include/${header}"
            DESTINATION "${gxtext_platform_headers}/${folder}")
    endforeach()
    gxtext_install_pkgconfig(${name})

    # A shared library brings what it needs by itself, an archive leaves that to the program.
    set(modules "")
    if(NOT BUILD_SHARED_LIBS)
        set(modules "${arg_MODULES}")
    endif()
    set_property(GLOBAL APPEND PROPERTY GXTEXT_COMPONENTS ${name})
    set_property(GLOBAL APPEND_STRING PROPERTY GXTEXT_COMPONENT_NEEDS
        "set(gxtext_${name}_on \"${arg_ON}\")\nset(gxtext_${name}_modules_wanted \"${modules}\")\n")
endfunction()

# gxtext-<name>.pc; reads the variables of gxtext_component.
function(gxtext_install_pkgconfig name)
    set(requires "")
    foreach(component ${arg_ON})
        list(APPEND requires "gxtext-${component} = ${PROJECT_VERSION}")
    endforeach()
    # The usual reader asks for --static only where a shared library could be meant.
    set(libs "")
    if(NOT BUILD_SHARED_LIBS)
        foreach(module ${arg_MODULES})
            string(REGEX REPLACE "([<>=]+)" " \\1 " module "${module}")
            list(APPEND requires "${module}")
        endforeach()
        if(AndroidLog_LIBRARY)
            cmake_path(GET AndroidLog_LIBRARY PARENT_PATH folder)
            set(libs " -L${folder} -Wl,-rpath,${folder} -llog")
        endif()
    endif()
    list(JOIN requires ", " requires)
    set(cflags "-I\${includedir}")
    if(arg_PLATFORM_HEADERS)
        string(APPEND cflags " -I\${includedir}/platform")
    endif()
    # From the file's own place, so that the tree may be moved.
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${gxtext_pkgconfig}"
        OUTPUT_VARIABLE prefix)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/component.pc.in" "${PROJECT_BINARY_DIR}/gxtext-${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/gxtext-${name}.pc" DESTINATION "${gxtext_pkgconfig}")
endfunction()

# gxtext_install_package(): what find_package(gxtext) reads, after the last component.
function(gxtext_install_package)
    if(NOT GXTEXT_INSTALL)
        return()
    endif()
    get_property(components GLOBAL PROPERTY GXTEXT_COMPONENTS)
    get_property(needs GLOBAL PROPERTY GXTEXT_COMPONENT_NEEDS)
    set(static ON)
    if(BUILD_SHARED_LIBS)
        set(static OFF)
    endif()
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/gxtext-config.cmake.in"
        "${PROJECT_BINARY_DIR}/gxtext-config.cmake" INSTALL_DESTINATION "${gxtext_package}")
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/gxtext-config-version.cmake"
        COMPATIBILITY ${gxtext_compatibility})
    install(FILES "${PROJECT_BINARY_DIR}/gxtext-config.cmake" "${PROJECT_BINARY_DIR}/gxtext-config-version.cmake"
        DESTINATION "${gxtext_package}")
    if(static)
        install(FILES "${PROJECT_SOURCE_DIR}/cmake/FindAndroidLog.cmake" DESTINATION "${gxtext_package}")
    endif()
endfunction()
