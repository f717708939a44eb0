#!/usr/bin/env bash
# Installs what is missing, builds the release with its benchmarks, runs them all and prints one table:
#
#   bench.sh [--quick]
#
# The table is left in build/bench/measurements.md too. --quick only shows that everything runs: its
# figures mean nothing. Every ratio is one within the same run, of medians, but a quiet machine gives
# better ones all the same.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
build=$project/build/bench

refreshes=400 starts=60 memory=10 seconds=60 growth=10000 functions=0.5 repetitions=9
case "$*" in
'') ;;
--quick) refreshes=20 starts=3 memory=2 seconds=6 growth=200 functions=0.05 repetitions=3 ;;
*) fail "takes --quick, or nothing" ;;
esac

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}" "${bench_packages[@]}"
configure bench -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=ON -DPANEL_BENCHMARKS=ON
cmake --build "$build" --target benchmarks
cd "$project"

rows=$(mktemp)
trap 'rm -f "$rows"' EXIT

# run WINDOW_MANAGER PROGRAM [ARGUMENT...]: in a desktop of its own, where only its daemon runs.
run() {
    echo "$2 ..." >&2
    tests/support/in-desktop.sh --pid-namespace --wm "$1" -- "$build/benchmarks/$2" "${@:3}"
}

{
    run openbox bench_refresh --rounds "$refreshes"
    run openbox bench_startup --rounds "$starts"
    run none bench_startup --rounds "$starts" --label "no window manager"
    run openbox bench_memory --rounds "$memory"
    run openbox bench_growth --refreshes "$growth"
    run openbox bench_idle --seconds "$seconds"
} >"$rows"
run openbox bench_functions --benchmark_format=csv --benchmark_min_time="$functions" \
    --benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true |
    awk -F, -v OFS='\t' '
        $9 == "true" { print "failed: " $0 > "/dev/stderr"; exit 1 }
        sub(/_median"/, "", $1) { sub(/"/, "", $1); print $1 ", processor time", $4, $5, "", "", "", "" }
    ' >>"$rows"

awk -F'\t' '
    BEGIN { row("What", "Panel", "Unit", "Floor", "Ratio", "At most", "Aim") }
    { row($1, $2, $3, $4, $5, $6, $7) }
    function row(a, b, c, d, e, f, g) { printf "%-66s %9s %-3s %9s %7s %8s  %s\n", a, b, c, d, e, f, g }
' "$rows"

model=$(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo)
{
    echo "$(date -u +%Y-%m-%d), ${model:-unknown processor}, $(nproc) processors," \
        "Linux $(uname -r), Qt $(qmake -qt=5 -query QT_VERSION 2>/dev/null || echo 5)," \
        "load $(cut -d' ' -f1 /proc/loadavg) at the end"
    echo
    echo "| What | Panel | Unit | Floor | Ratio | At most | Aim |"
    echo "|---|--:|---|--:|--:|--:|---|"
    awk -F'\t' '{ printf "| %s | %s | %s | %s | %s | %s | %s |\n", $1, $2, $3, $4, $5, $6, $7 }' "$rows"
} >"$build/measurements.md"
echo "The same in Markdown: $build/measurements.md"
