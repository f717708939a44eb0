#!/usr/bin/env bash
# Installs what is missing, then builds and runs the whole test suite under private X servers.
# Arguments go on to ctest: "scripts/test.sh -R OverviewForm", "scripts/test.sh -L unit". With
# PANEL_TEST_PLAIN=ON in the environment it does without namespaces, as in a plain container.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"

if ! "$project/tests/support/in-desktop.sh" --can-hide-processes && pids=$(pgrep -x Corvane); then
    fail "the tests need a machine on which no daemon runs that isn't theirs, and can't hide this one:
$(ps -o pid=,ppid=,stat=,args= -p "${pids//$'\n'/,}" | sed 's/^/    /')
End it (kill ${pids//$'\n'/ }), then start again. One that is <defunct> goes with its parent, the second number."
fi

# As it is delivered, but for link-time optimisation, which would cost minutes for the many test
# programs.
configure test -DCMAKE_BUILD_TYPE=Release -DPANEL_LTO=OFF -DBUILD_TESTING=ON \
    -DPANEL_TEST_PLAIN="${PANEL_TEST_PLAIN:-OFF}"
cmake --build "$project/build/test"
cd "$project/build/test"
# One more than there are processors: tests wait more than they compute.
exec ctest --output-on-failure --parallel "$(($(nproc) + 1))" --no-tests=error "$@"
