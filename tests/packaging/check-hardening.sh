#!/usr/bin/env bash
# Which level of _FORTIFY_SOURCE optimised code is compiled with:
#
#   check-hardening.sh CMAKE SOURCE_FOLDER COMPILER
set -euo pipefail
cmake=$1
source=$2
compiler=$3

cat >CMakeLists.txt <<SCRIPT
cmake_minimum_required(VERSION 3.16)
project(hardening LANGUAGES CXX)
include("$source/cmake/PanelOptions.cmake")
add_library(level OBJECT level.cpp)
target_link_libraries(level PRIVATE panel_options)
SCRIPT

# level_is EXPECTED ARGUMENT...: with these arguments for the configure step.
level_is() {
    local expected=$1
    shift
    echo "static_assert(_FORTIFY_SOURCE == $expected, \"another level\");" >level.cpp
    rm -rf build
    if ! { "$cmake" -S . -B build "-DCMAKE_CXX_COMPILER=$compiler" -DCMAKE_BUILD_TYPE=Release \
        -DPANEL_WARNINGS_AS_ERRORS=ON "$@" && "$cmake" --build build; } >output 2>&1; then
        echo "FAIL: the level isn't $expected with $*"
        cat output
        failures=$((failures + 1))
    fi
}

# The compiler may bring a level of its own.
own=$(echo _FORTIFY_SOURCE | "$compiler" -O2 -E -P -x c++ - | tail -n 1)
[ "$own" != _FORTIFY_SOURCE ] || own=0

failures=0
# CMake would take flags from them, such as those of a package's build.
unset CPPFLAGS CXXFLAGS
level_is $((own > 2 ? own : 2))
level_is 2 -DCMAKE_CXX_FLAGS='-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=1'
level_is 3 -DCMAKE_CXX_FLAGS='-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3'
level_is 3 -DCMAKE_CXX_FLAGS_RELEASE='-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3'
[ "$failures" -eq 0 ]
