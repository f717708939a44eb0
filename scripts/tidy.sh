#!/usr/bin/env bash
# Runs clang-tidy over the product's code, or over the files that are named, with the compile commands
# of a configured and built tree:
#
#   tidy.sh BUILD_FOLDER [FILE...]
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
shift

cd "$project"
if [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files 'app/*.cpp' 'fancy/*.cpp' 'overview/*.cpp' 'settings/*.cpp' \
        'shell/*.cpp' 'windowkit/*.cpp')
    set -- "${files[@]}"
fi
# GCC's own warning flags mean nothing to it.
printf '%s\0' "$@" | xargs -0 -n 2 -P "$(nproc)" \
    clang-tidy -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option
