#!/usr/bin/env bash
# Fuzzes the settings page under the sanitizers:
#
#   fuzz.sh [RUNS]
#
# RUNS inputs, a million by default, shared among as many processes as there are processors. Starts
# from tests/fuzz/corpus; what else it finds worth keeping stays in build/fuzz/corpus. An input that
# shows a fault ends the run, lies in build/fuzz as crash-..., and goes into tests/fuzz/corpus with its
# cure.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
work=$project/build/fuzz

need_packages "${build_packages[@]}" "${run_packages[@]}" "${check_packages[@]}" \
    "${test_packages[@]}" libclang-rt-14-dev
configure fuzz -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DPANEL_FUZZ=ON
cmake --build "$work" --target fuzz_settings
mkdir -p "$work/corpus"

# Leaks are the suite's affair: to look for them after each input takes ten times as long.
export ASAN_OPTIONS=malloc_context_size=0:quarantine_size_mb=8:max_malloc_fill_size=0:detect_leaks=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
jobs=$(nproc)
cd "$work"
exec "$project/tests/support/in-desktop.sh" --no-display -- env TMPDIR=/dev/shm \
    "$work/tests/fuzz/fuzz_settings" -artifact_prefix="$work/" -runs="$((${1:-1000000} / jobs))" \
    -fork="$jobs" -max_len=400 -timeout=60 "$work/corpus" "$project/tests/fuzz/corpus"
