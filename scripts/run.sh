#!/usr/bin/env bash
# Installs what is missing, builds the panel and starts it with the stand-in daemon beside it.
#
# On a desktop the panel's window opens there, and the script ends with the panel's exit status.
# Without a display it opens on a private one: the script waits until the page shows the daemon's row,
# saves a screenshot, prints its path, and ends with 0 only if the row was really there.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

build=$project/build/release
screenshot=$build/panel.png

packages=("${build_packages[@]}" "${run_packages[@]}")
[ -n "${DISPLAY:-}" ] || packages+=("${display_packages[@]}")
need_packages "${packages[@]}"

configure release -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF
cmake --build "$build" --target corvane-panel Corvane

if [ -z "${DISPLAY:-}" ]; then
    rm -f "$screenshot"
    "$project/tests/support/in-desktop.sh" -- \
        "$project/scripts/screenshot-of-the-row.sh" "$build/bin/corvane-panel" "$screenshot"
    say "the page shows the daemon's row; a screenshot: $screenshot"
    exit 0
fi

# The panel leaves its daemon running. This one is only a stand-in, so it ends with the panel.
folder=$(mktemp -d)
record=$folder/Corvane
end_stand_in() {
    if [ -f "$record" ]; then
        # Gone already is as good.
        kill "$(sed -n 's/^pid=//p' "$record")" 2>/dev/null || :
    fi
    rm -rf "$folder"
}
trap end_stand_in EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

status=0
CORVANE_RECORD=$record "$build/bin/corvane-panel" || status=$?
exit "$status"
