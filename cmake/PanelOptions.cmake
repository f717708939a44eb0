# Build settings that every target of this tree shares, as the interface target panel_options.

if(CMAKE_SOURCE_DIR STREQUAL PROJECT_SOURCE_DIR)
    set(PANEL_IS_TOP_LEVEL ON)
else()
    set(PANEL_IS_TOP_LEVEL OFF)
endif()

option(PANEL_WARNINGS_AS_ERRORS "Treat compiler warnings in our own code as errors" OFF)
option(PANEL_LTO "Link-time optimisation of the program in release builds" ON)
option(PANEL_HARDENING "Hardening flags in optimised builds" ON)
option(PANEL_BENCHMARKS "Build the benchmarks (top level only)" OFF)
option(PANEL_COVERAGE "Instrument for gcov" OFF)
set(PANEL_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

set(PANEL_WINDOW_AGENT "bundled" CACHE STRING
    "Frameless-window agent: bundled (windowkit/) or system (an installed QWindowKit)")
set_property(CACHE PANEL_WINDOW_AGENT PROPERTY STRINGS bundled system)

# Set, so that -std stands in the compile commands, which other tools read.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

add_library(panel_options INTERFACE)
target_compile_features(panel_options INTERFACE cxx_std_17)
target_compile_definitions(panel_options INTERFACE
    QT_DEPRECATED_WARNINGS
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING)
target_compile_options(panel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${PANEL_WARNINGS_AS_ERRORS}>:-Werror>)

# Sets <result> to whether the compiler or its flags bring _FORTIFY_SOURCE 2 or more, as those of many
# distributions do.
function(panel_fortify_level_is_set result)
    set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
    set(CMAKE_TRY_COMPILE_CONFIGURATION "${CMAKE_BUILD_TYPE}")
    set(CMAKE_REQUIRED_FLAGS -O2)
    set(CMAKE_REQUIRED_QUIET ON)
    # Asked anew each time: the flags may have changed since.
    unset(PANEL_FORTIFY_LEVEL_IS_SET CACHE)
    include(CheckCXXSourceCompiles)
    check_cxx_source_compiles("
        #if !defined(_FORTIFY_SOURCE) || _FORTIFY_SOURCE < 2
        #error none
        #endif
        " PANEL_FORTIFY_LEVEL_IS_SET)
    set(${result} "${PANEL_FORTIFY_LEVEL_IS_SET}" PARENT_SCOPE)
endfunction()

if(PANEL_HARDENING)
    target_compile_options(panel_options INTERFACE -fstack-protector-strong)
    if(NOT PANEL_SANITIZE)
        # Needs optimisation, and hides from the sanitizers what they look for.
        panel_fortify_level_is_set(set)
        if(NOT set)
            target_compile_options(panel_options INTERFACE
                $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
                $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
        endif()
    endif()
    # CMake's own way links with -fPIE, and link-time optimisation would take that in place of the
    # -fPIC that Qt's targets bring: the panel would crash when it starts. A linker may refuse
    # to make a shared object with -pie.
    target_link_options(panel_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> LINKER:-z,relro LINKER:-z,now)
endif()

if(PANEL_SANITIZE)
    target_compile_options(panel_options INTERFACE
        -fsanitize=${PANEL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(panel_options INTERFACE -fsanitize=${PANEL_SANITIZE})
endif()

if(PANEL_COVERAGE)
    target_compile_options(panel_options INTERFACE --coverage -fprofile-abs-path)
    target_link_options(panel_options INTERFACE --coverage)
endif()

# Link-time optimisation is for the delivered program only: the tests link the same modules a few
# dozen times over, and another tree that takes the modules in may not use it at all. Only GCC can give
# objects that serve both.
function(panel_enable_lto target)
    if(NOT PANEL_LTO OR PANEL_SANITIZE OR PANEL_COVERAGE OR NOT PANEL_IS_TOP_LEVEL
            OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    include(CheckIPOSupported)
    check_ipo_supported(RESULT supported OUTPUT reason LANGUAGES CXX)
    if(supported)
        set_target_properties(${target} PROPERTIES
            INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
            INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON)
        # For those that link a module without link-time optimisation, such as the tests.
        target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-ffat-lto-objects>)
    else()
        message(STATUS "Link-time optimisation is off: ${reason}")
    endif()
endfunction()
