#!/usr/bin/env bash
# Runs clang-tidy over all our code, with the compile commands of a configured and built tree:
#
#   tidy.sh BUILD_FOLDER
#
# GCC-only flags of that tree are passed over.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
build=$1

cd "$project"
git ls-files '*.cpp' | while read -r file; do
    # Sources that this tree doesn't build have no compile command.
    if grep -qF "/$file\"" "$build/compile_commands.json"; then
        printf '%s\0' "$file"
    fi
done | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option
