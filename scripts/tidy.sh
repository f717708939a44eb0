#!/usr/bin/env bash
# Runs clang-tidy and clazy over the code of the product and its tests, or over the files that are
# named, with the compile commands of a configured and built tree:
#
#   tidy.sh BUILD_FOLDER [FILE...]
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
shift

cd "$project"
if [ $# -eq 0 ]; then
    # Without what isn't built with the rest.
    mapfile -t files < <(git ls-files 'app/*.cpp' 'fancy/*.cpp' 'overview/*.cpp' 'settings/*.cpp' \
        'shell/*.cpp' 'windowkit/*.cpp' 'tests/*.cpp' ':!tests/panel/screenshots.cpp')
    set -- "${files[@]}"
fi

# check FILE: both tools. GCC's own warning flags mean nothing to either.
check() {
    local file=$1 status=0
    local checks=level0,level1
    case $file in
    tests/*)
        # Nobody waits for the static objects of a test. And where a lambda captures a local
        # variable, its context object goes before that, which the check doesn't see.
        checks+=,no-non-pod-global-static,no-lambda-in-connect
        ;;
    esac
    clang-tidy -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option "$file" || status=1
    clazy-standalone -p "$build" --checks="$checks" --header-filter="^$project/" \
        --ignore-dirs="^$build/" --extra-arg=-Wno-unknown-warning-option --extra-arg=-Werror \
        "$file" || status=1
    return "$status"
}
export -f check
export project build

# shellcheck disable=SC2016 # the file is the inner shell's argument
printf '%s\0' "$@" | xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' check
