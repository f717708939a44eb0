#!/usr/bin/env bash
# Fuzzes the settings file under the sanitizers:
#
#   fuzz.sh [RUNS]
#
# RUNS inputs, a million by default, shared among as many processes as there are processors. Starts
# from the inputs in tests/fuzz/corpus; what it finds out beyond them stays in build/fuzz/corpus for the
# next time. The exit status is 0 where no input has shown a fault; else the input lies in build/fuzz as
# crash-..., and goes into tests/fuzz/corpus with its cure.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
runs=${1:-1000000}

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}" "${check_packages[@]}" libclang-rt-14-dev

configure fuzz -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DPANEL_FUZZ=ON
cmake --build "$project/build/fuzz" --target fuzz_settings

work="$project/build/fuzz"
mkdir -p "$work/corpus"
jobs=$(nproc)
export LSAN_OPTIONS="suppressions=$project/tests/support/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
# fuzz RUNS OPTION...: a run of the fuzzer.
fuzz() {
    "$project/tests/support/in-desktop.sh" --no-display -- \
        "$work/tests/fuzz/fuzz_settings" -artifact_prefix="$work/" -runs="$1" \
        -max_len=400 -timeout=60 -detect_leaks=0 -print_final_stats=1 -verbosity=0 "${@:2}" \
        "$work/corpus" "$project/tests/fuzz/corpus"
}

# To note where memory was allocated costs a quarter of the time, and without that the leaks of other
# libraries can't be told from ours; to look for leaks after each input takes ten times as long as the
# input. So this comes last, once, over the inputs that were found worth keeping.
say "$runs inputs in $jobs processes"
pids=()
for ((job = 1; job <= jobs; ++job)); do
    ASAN_OPTIONS=malloc_context_size=0:quarantine_size_mb=8:max_malloc_fill_size=0:detect_leaks=0 \
        fuzz $((runs / jobs)) -seed="$job" &
    pids+=($!)
done
status=0
for pid in "${pids[@]}"; do
    wait "$pid" || status=1
done

say "the $(find "$work/corpus" -type f | wc -l) inputs that were kept, and what they leak"
fuzz 0 || status=1
exit "$status"
