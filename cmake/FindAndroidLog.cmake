# The Android log: part of the NDK on the device, Debian's android-liblog elsewhere.
# Defines the target AndroidLog::AndroidLog.
if(ANDROID)
    # The NDK's compiler knows where both the header and the library are.
    if(NOT TARGET AndroidLog::AndroidLog)
        add_library(AndroidLog::AndroidLog INTERFACE IMPORTED)
        target_link_libraries(AndroidLog::AndroidLog INTERFACE log)
    endif()
    set(AndroidLog_FOUND TRUE)
    return()
endif()

find_path(AndroidLog_INCLUDE_DIR android/log.h PATH_SUFFIXES android)
find_library(AndroidLog_LIBRARY log PATH_SUFFIXES android)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(AndroidLog REQUIRED_VARS AndroidLog_LIBRARY AndroidLog_INCLUDE_DIR)

if(AndroidLog_FOUND AND NOT TARGET AndroidLog::AndroidLog)
    # Debian keeps the library in a folder that the loader does not search, so programs need its path; not those with
    # functions of their own in its place, whose every library would be looked for there first.
    get_filename_component(AndroidLog_DIR "${AndroidLog_LIBRARY}" DIRECTORY)
    add_library(AndroidLog::AndroidLog UNKNOWN IMPORTED)
    set_target_properties(AndroidLog::AndroidLog PROPERTIES
        IMPORTED_LOCATION "${AndroidLog_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${AndroidLog_INCLUDE_DIR}"
        INTERFACE_LINK_OPTIONS "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:GXTEXT_OWN_LOG>>>:-Wl,-rpath,${AndroidLog_DIR}>")
endif()
mark_as_advanced(AndroidLog_INCLUDE_DIR AndroidLog_LIBRARY)
