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

# The panel leaves its daemon running. A stand-in ends with this script, which then no longer has the pipe
# open: a signal to its PID could hit another process by now.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
mkfifo "$folder/running"
exec 9<>"$folder/running"

status=0
CORVANE_WHILE_OPEN=$folder/running "$build/bin/corvane-panel" 9>&- || status=$?
exit "$status"
