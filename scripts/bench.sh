#!/usr/bin/env bash
# Builds the release and measures it against its baselines (benchmarks/), and against two programs that
# show processes too where they are installed, qps and lxtask. Takes three minutes:
#
#   bench.sh [ROUNDS]
#
# ROUNDS starts of each program, 40 by default. Figures are medians of one run on a display of its own.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
build=$project/build/bench

# measure ROUNDS: what runs inside the display; prints a table of tabs.
measure() {
    local rounds=$1 names=() commands=() pipelines=() other i
    local panel=$build/bin/corvane-panel baseline=$build/benchmarks/baseline
    add() { names+=("$1"); commands+=("$2"); }
    add panel "$panel"
    add 'empty window and the same commands' "$baseline start-up"
    add 'the same without OpenGL' "env QT_XCB_GL_INTEGRATION=none $baseline start-up"
    for other in qps lxtask; do
        ! command -v "$other" >/dev/null || add "$other" "$other"
    done
    "$build/bin/Corvane" &
    daemon=$!
    trap 'kill %1' EXIT

    # hyperfine's CSV: the fourth field from the start of the figures is the median, in seconds.
    hyperfine --shell=none --warmup 3 --runs "$rounds" --style basic --export-csv start.csv \
        "${commands[@]/#/$build/benchmarks/until_shown }" >&2
    mapfile -t starts < <(awk -F, 'NR > 1 { printf "%.1f\n", $(NF - 4) * 1000 }' start.csv)
    for i in "${!names[@]}"; do
        printf 'start-up to the mapped window, ms\t%s\t%s\n' "${names[i]}" "${starts[i]}"
    done
    for i in "${!names[@]}"; do
        # shellcheck disable=SC2086
        for _ in 1 2 3 4 5; do "$build/benchmarks/until_shown" --memory ${commands[i]}; done |
            sort -n | awk -v name="${names[i]}" 'NR == 3 {
                printf "private memory, KiB\t%s\t%d\npeak of the resident set, KiB\t%s\t%d\n",
                    name, $1, name, $2 }'
    done

    "$build/benchmarks/bench_refresh" "$((rounds * 10))" | awk -F'\t' '{
        printf "%s, ms\tpanel\t%s\n%s, ms\tthe same commands in an empty window\t%s\n", $1, $2, $1, $3 }'
    mapfile -t pipelines < <("$build/benchmarks/baseline" commands "$daemon")
    pipelines=("${pipelines[@]@Q}")
    hyperfine --shell=none --warmup 10 --runs "$((rounds * 10))" --style basic --export-csv refresh.csv \
        "${pipelines[@]/#//bin/bash -c }" >&2
    awk -F, 'NR > 1 { sum += $(NF - 4) * 1000 } END {
        printf "refresh, wall time, ms\tthe two pipelines by themselves\t%.2f\n", sum }' refresh.csv
}

if [ "${1:-}" = --measure ]; then
    measure "$2"
    exit
fi
need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${bench_packages[@]}"
configure bench -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DPANEL_BENCHMARKS=ON
cmake --build "$build" --target benchmarks
"$project/tests/support/in-desktop.sh" --session-bus --pid-namespace -- \
    "$project/scripts/bench.sh" --measure "${1:-40}" |
    sort -s -t "$(printf '\t')" -k 1,1 | awk -F'\t' '{ printf "%-42s %-42s %9s\n", $1, $2, $3 }'
echo "Linux $(uname -r), $(nproc) processors, load $(cut -d' ' -f1 /proc/loadavg) at the end"
