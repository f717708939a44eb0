#!/usr/bin/env bash
# Repeats the tests labelled soak, and those of leaks with more rounds, until one fails:
#
#   soak.sh [TIMES]
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}"
configure soak -DCMAKE_BUILD_TYPE=RelWithDebInfo -DPANEL_LTO=OFF -DBUILD_TESTING=ON \
    -DPANEL_LONG_TESTS=ON
cmake --build "$project/build/soak"
cd "$project/build/soak"
# QtTest gives a test function five minutes by itself.
export QTEST_FUNCTION_TIMEOUT=$((6 * 60 * 60 * 1000))
PANEL_TEST_ROUNDS=10000 ctest -R '^tst_OverviewForm$' --output-on-failure --no-tests=error
for ((i = 0; i < ${1:-20}; ++i)); do
    ctest -L soak --output-on-failure --no-tests=error
done
