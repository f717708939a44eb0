#!/usr/bin/env bash
# Takes the documentation's screenshots of the window into docs/screenshots: each state of the real
# program at device pixel ratios 1 and 2, taken from a private X server, and some of desktops with other
# scales. Those of all scales are left in build/screenshots, to be looked at.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"

build=$project/build/test
configure test -DCMAKE_BUILD_TYPE=Release -DPANEL_LTO=OFF -DBUILD_TESTING=ON
cmake --build "$build" --target screenshots tst_Desktops fancy_gallery

all=$project/build/screenshots
rm -rf "$all"
mkdir -p "$all"
export PANEL_TEST_SCREENSHOTS=$all
in_desktop() {
    "$project/tests/support/in-desktop.sh" --screen "$1" --pid-namespace -- "${@:2}"
}
in_desktop 2560x1600x24 "$build/tests/panel/screenshots"
in_desktop 2560x1600x24 "$build/tests/fancy/fancy_gallery" "$all/gallery.png"
in_desktop 2700x2000x24 "$build/tests/panel/tst_Desktops" isScaledAndWhole

for screenshot in "$all"/gallery.png "$all"/panel-*.png "$all"/desktop-{144,192}.png; do
    convert "$screenshot" -strip -define png:compression-level=9 -define png:compression-filter=1 \
        "$project/docs/screenshots/$(basename "$screenshot")"
done
say "screenshots in docs/screenshots and build/screenshots"
