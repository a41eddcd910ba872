# Flags that every target of the project is compiled with. They are private to our targets: a parent
# project that links the libraries keeps its own.
option(GXTEXT_WERROR "Treat warnings as errors" OFF)

# gxtext_target(<name>): warnings, hidden symbols and exact floating point.
#
# With CMAKE_UNITY_BUILD the compiler sees the sources of a target in batches, and their headers once per batch: names
# in unnamed namespaces are unique within a target then. The sanitizers' presets compile each file by itself, so that
# none leans on another's includes.
function(gxtext_target name)
    target_compile_features(${name} PUBLIC cxx_std_20)
    set_target_properties(${name} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    # Each function in a section of its own: libgxtext.so leaves out those that nothing calls.
    target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections)
    # A fused multiply-add rounds once where the formulas round twice: the bytes would differ between
    # machines.
    target_compile_options(${name} PRIVATE
        -ffp-contract=off -fno-fast-math -Wall -Wextra -Wzero-as-null-pointer-constant -Wsuggest-override
        $<$<BOOL:${GXTEXT_WERROR}>:-Werror>)
    # A batch of sources has half a gigabyte of syntax trees: by default GCC looks through them for what it may free at
    # each step of 128 MiB, a tenth of its time.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=524288>)
endfunction()

# gxtext_optimization(<name> <level>): less of it in release builds, where a user would not notice but a build does.
function(gxtext_optimization name level)
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O${level}>)
endfunction()
