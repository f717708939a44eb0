#!/usr/bin/env bash
# Installs what is missing, then builds and runs the whole test suite under private X servers.
# Arguments go on to ctest: "scripts/test.sh -R OverviewForm", "scripts/test.sh -L unit".
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"

# As it is delivered, but for link-time optimisation, which would cost minutes for the many test
# programs.
configure test -DCMAKE_BUILD_TYPE=Release -DPANEL_LTO=OFF -DBUILD_TESTING=ON
cmake --build "$project/build/test"
cd "$project/build/test"
# One more than there are processors: tests wait more than they compute.
exec ctest --output-on-failure --parallel "$(($(nproc) + 1))" --no-tests=error "$@"
