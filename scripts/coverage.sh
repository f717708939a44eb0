#!/usr/bin/env bash
# Runs the whole test suite on an instrumented build and reports which lines and branches of our code
# it reaches, by file and by room:
#
#   coverage.sh [CTEST-ARGUMENT...]
#
# Pages with the source lie in build/coverage/report/ afterwards. Branches that exist only for
# exceptions aren't counted: nothing here throws. Programs that tests start count too, where they end
# of themselves: one that is killed writes no figures. The packages' tests, which build another tree,
# are left out.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

rooms=(app overview settings fancy shell windowkit)
build=$project/build/coverage

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}" gcovr

cd "$project"
cmake --preset coverage
cmake --build --preset coverage
# What an earlier run has counted.
find "$build" -name '*.gcda' -delete

failed=0
ctest --preset coverage --parallel "$(nproc)" --no-tests=error --exclude-regex '^packages_' "$@" ||
    failed=$?

# figures FILTER...: gcovr on what the run has counted, of our code that the filters match.
data=$build/coverage.json
gcovr --root "$project" --object-directory "$build" --exclude-throw-branches \
    "${rooms[@]/#/--filter=}" --json "$data" "$build"
mkdir -p "$build/report"
gcovr --root "$project" --exclude-throw-branches --add-tracefile "$data" \
    --html-details "$build/report/index.html"

say 'lines'
gcovr --root "$project" --exclude-throw-branches --add-tracefile "$data"
say 'branches'
gcovr --root "$project" --exclude-throw-branches --add-tracefile "$data" --branches
say 'by room'
for room in "${rooms[@]}"; do
    [ -d "$room" ] || continue
    printf '%-10s ' "$room"
    gcovr --root "$project" --exclude-throw-branches --add-tracefile "$data" \
        --filter "$room/" --output /dev/null --print-summary | grep -E '^(lines|branches)' | paste -sd' '
done

exit "$failed"
