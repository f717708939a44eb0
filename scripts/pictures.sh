#!/usr/bin/env bash
# Takes the documentation's screenshots of the window into docs/pictures: each state of the real
# program at device pixel ratios 1 and 2, taken from a private X server.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

screen=2560x1600x24

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"

build=$project/build/test
configure test -DCMAKE_BUILD_TYPE=Release -DPANEL_LTO=OFF -DBUILD_TESTING=ON
cmake --build "$build" --target pictures

raw=$(mktemp -d)
trap 'rm -rf "$raw"' EXIT
PANEL_TEST_PICTURES=$raw "$project/tests/support/in-desktop.sh" --screen "$screen" \
    --pid-namespace -- "$build/tests/panel/pictures"

for screenshot in "$raw"/*.png; do
    convert "$screenshot" -strip -define png:compression-level=9 -define png:compression-filter=1 \
        "$project/docs/pictures/$(basename "$screenshot")"
done
say "screenshots in docs/pictures: $(find "$raw" -name '*.png' | wc -l)"
