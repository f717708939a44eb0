#!/usr/bin/env bash
# Runs the test suite on an instrumented build and reports the lines and branches of our code that it
# reaches, by file:
#
#   coverage.sh [CTEST-ARGUMENT...]
#
# Pages with the source lie in build/coverage/report/ afterwards. Branches that exist only for
# exceptions aren't counted: nothing here throws. Of the programs that tests start only those count
# that end by themselves.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
build=$project/build/coverage

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}" gcovr
cd "$project"
cmake --preset coverage
cmake --build --preset coverage
find "$build" -name '*.gcda' -delete

failed=0
ctest --preset coverage --parallel "$(nproc)" --no-tests=error "$@" || failed=$?

mkdir -p "$build/report"
modules=(app overview settings fancy shell windowkit)
report=(gcovr --root "$project" --object-directory "$build" --exclude-throw-branches
    "${modules[@]/#/--filter=}")
"${report[@]}" --print-summary --html-details "$build/report/index.html" --txt -
"${report[@]}" --txt - --branches
exit "$failed"
