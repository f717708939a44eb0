#!/usr/bin/env bash
# Runs the long forms of the tests of faults, a quarter of an hour, and prints their figures:
#
#   soak.sh [PERCENT]
#
# PERCENT of the rounds, 100 by default. Random numbers start where PANEL_TEST_RANDOM says; each figure
# tells where its own have started. The exit status is 0 where all have passed; what they wrote lies in
# build/soak/logs. The settings file's fuzzer is a script of its own: fuzz.sh.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"
percent=${1:-100}

need_packages "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
    "${test_packages[@]}" valgrind

configure soak -DCMAKE_BUILD_TYPE=RelWithDebInfo -DPANEL_LTO=OFF -DBUILD_TESTING=ON \
    -DPANEL_LONG_TESTS=ON
logs="$project/build/soak/logs"
mkdir -p "$logs"
tests=(tst_DaemonChanges tst_ToolFaults tst_Surroundings tst_DisplayLoss tst_SettingsKilled
    tst_SettingsTogether tst_SettingsFuzz tst_WholeLife)
cmake --build "$project/build/soak" --target "${tests[@]}"

# QtTest gives a test function five minutes by itself.
export QTEST_FUNCTION_TIMEOUT=$((6 * 60 * 60 * 1000))

failed=()
# soak NAME ROUNDS: runs one test and prints its figures.
soak() {
    local name=$1 rounds=$(($2 * percent / 100)) start=$SECONDS result=passed
    [ "$rounds" -gt 0 ] || rounds=1
    if ! PANEL_TEST_ROUNDS=$rounds ctest --test-dir "$project/build/soak" -R "^$name\$" \
        --no-tests=error --verbose >"$logs/$name" 2>&1; then
        result=FAILED
        failed+=("$name")
    fi
    say "$name: $result in $((SECONDS - start)) s"
    sed -n 's/^[0-9]*: QINFO *: [^ ]* /    /p' "$logs/$name"
}

soak tst_DaemonChanges 500
soak tst_ToolFaults 300
soak tst_Surroundings 1
soak tst_DisplayLoss 1
soak tst_SettingsKilled 500
soak tst_SettingsTogether 1000
soak tst_SettingsFuzz 20000

# Memory that is lost counts, memory that lives until the end does not: Qt and its plug-ins keep much.
export PANEL_TEST_CHECKER="valgrind --quiet --error-exitcode=99 --leak-check=full \
--show-leak-kinds=definite --errors-for-leak-kinds=definite --num-callers=30 \
--child-silent-after-fork=yes --suppressions=$project/tests/support/valgrind.supp"
export PANEL_TEST_PATIENCE=10
say 'the next one under valgrind'
soak tst_WholeLife 1

[ ${#failed[@]} -eq 0 ] || fail "failed: ${failed[*]}, see $logs"
