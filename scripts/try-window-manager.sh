#!/usr/bin/env bash
# Tries the panel under any window manager that is installed and knows --replace:
#
#   try-window-manager.sh MANAGER [ARGUMENT OF THE MANAGER...]
#
# Builds what is missing and runs on a private X server what the test suite runs under the managers
# that it knows. The exit status is that of the test.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

[ $# -gt 0 ] || fail "which window manager?"
command -v "$1" >/dev/null || fail "$1 isn't installed"
need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"

build=$project/build/test
configure test -DCMAKE_BUILD_TYPE=Release -DPANEL_LTO=OFF -DBUILD_TESTING=ON
cmake --build "$build" --target tst_WindowManagers
exec "$project/tests/support/in-desktop.sh" --wm "$*" --session-bus --pid-namespace -- \
    "$build/tests/panel/tst_WindowManagers"
