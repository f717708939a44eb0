#!/usr/bin/env bash
# Runs a command in surroundings of its own and cleans up after it:
#
#   in-desktop.sh [--no-display] [--wm MANAGER|none] [--screen WxHxD]... [--server-dpi DPI]
#                 [--session-bus] [--pid-namespace] -- COMMAND...
#   in-desktop.sh --can-hide-processes
#
# The command gets a fresh home, configuration, runtime and temporary folder, the locale C.UTF-8 and
# a short list of variables. Besides:
#
#   --screen WxHxD     the size of the private X server, 1920x1080x24 by default; each further one is a
#                      further Xinerama screen to the right
#   --server-dpi DPI   the server's own resolution, 96 by default
#   --wm MANAGER       the window manager, openbox by default; arguments may follow the name. It is
#                      ready before the command starts, which finds this text in PANEL_TEST_WM
#   --session-bus      a D-Bus session, which the window manager shares
#   --pid-namespace    a PID namespace in which the command sees only its own children. Where there is
#                      none, what the command leaves behind is ended all the same, but it sees the
#                      machine's processes: run one such command at a time
#
# The exit status is the command's; 70 where the surroundings can't be had.
#
# The second form only tells whether there are PID namespaces, by its exit status. The variable
# PANEL_TEST_PLAIN, if it is set to anything, makes both do without them.
set -euo pipefail

namespace=(unshare --pid --fork --kill-child --mount-proc)
# The user keeps their ID: tests compare it with what ps tells, and D-Bus, outside, checks it.
[ "$(id -u)" -eq 0 ] || namespace+=(--user --map-current-user)
can_hide_processes() {
    [ -z "${PANEL_TEST_PLAIN:-}" ] && "${namespace[@]}" true 2>/dev/null
}
if [ "${1-}" = --can-hide-processes ]; then
    can_hide_processes
    exit
fi

display=yes
wm=openbox
screens=()
server_dpi=96
session_bus=no
pid_namespace=no
while [ $# -gt 0 ]; do
    case "$1" in
    --no-display) display=no ;;
    --wm) wm=$2; shift ;;
    --screen) screens+=("$2"); shift ;;
    --server-dpi) server_dpi=$2; shift ;;
    --session-bus) session_bus=yes ;;
    --pid-namespace) pid_namespace=yes ;;
    --) shift; break ;;
    *) echo "in-desktop.sh: unknown option $1" >&2; exit 64 ;;
    esac
    shift
done
[ "$display" = yes ] || wm=none
[ ${#screens[@]} -gt 0 ] || screens=(1920x1080x24)

fail() {
    echo "in-desktop.sh: $*" >&2
    exit 70
}

patience=60

root=$(mktemp -d "${TMPDIR:-/tmp}/panel-test.XXXXXX")
# A test that acts as another user has to pass through.
chmod 711 "$root"

clean_up() {
    local job signal=TERM rounds=0
    # The last started ends first: a window manager would complain of the server's end. By job, as a
    # PID may be another process's by now.
    while job=$(jobs -r | tail -n 1) && [ -n "$job" ]; do
        job=${job%%]*}
        # Again if need be: an X server misses a signal that comes just before it goes to sleep.
        kill -"$signal" "%${job#[}" 2>/dev/null || :
        sleep 0.02
        # unshare doesn't end by that while its command runs.
        [ $((++rounds)) -lt 100 ] || signal=KILL
    done
    rm -rf "$root"
}
trap clean_up EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

# wait_until PID DESCRIPTION COMMAND...: until the command succeeds; gives up when process PID ends, or
# after a minute.
wait_until() {
    local pid=$1 what=$2
    local deadline=$((SECONDS + patience))
    shift 2
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$what doesn't come up: $(cat "$root"/log/* 2>/dev/null)"
        kill -0 "$pid" 2>/dev/null || fail "$what has ended: $(cat "$root"/log/* 2>/dev/null)"
        sleep 0.02
    done
}

mkdir -p "$root"/home "$root"/config "$root"/cache "$root"/data "$root"/tmp "$root"/log
mkdir -m 700 "$root"/run

environment=(
    HOME="$root/home"
    XDG_CONFIG_HOME="$root/config"
    XDG_CACHE_HOME="$root/cache"
    XDG_DATA_HOME="$root/data"
    XDG_RUNTIME_DIR="$root/run"
    TMPDIR="$root/tmp"
    LANG=C.UTF-8
    LC_ALL=C.UTF-8
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
    USER="$(id -un)"
    LOGNAME="$(id -un)"
    SHELL=/bin/bash
)
for name in ASAN_OPTIONS LSAN_OPTIONS UBSAN_OPTIONS GCOV_PREFIX GCOV_PREFIX_STRIP \
    ${!PANEL_TEST_@} ${!QTEST_@}; do
    [ -z "${!name+set}" ] || environment+=("$name=${!name}")
done
# Nothing here draws with OpenGL, and its driver leaks.
[ -z "${LSAN_OPTIONS+set}" ] || environment+=(QT_XCB_GL_INTEGRATION=none)

if [ "$session_bus" = yes ]; then
    environment+=(DBUS_SESSION_BUS_ADDRESS="unix:path=$root/run/bus" GSETTINGS_BACKEND=memory)
fi

if [ "$display" = yes ]; then
    # start_server PROGRAM ARGUMENT...: leaves its display number in the file "display". The kernel
    # ends the server with this script, also where the script is killed outright.
    start_server() {
        : >"$root/display"
        setpriv --pdeathsig TERM "$1" -displayfd 3 -nolisten tcp -noreset -dpi "$server_dpi" "${@:2}" \
            3>"$root/display" >"$root/log/$1" 2>&1 &
        server=$!
        wait_until "$server" "the X server $1" grep -q . "$root/display"
    }

    start_server Xvfb -screen 0 "${screens[0]}"
    if [ ${#screens[@]} -gt 1 ]; then
        # Xvfb lays its screens one upon the other. Xephyr, shown on it, sets them side by side;
        # without RANDR, of which it would tell only the first.
        arguments=(+xinerama -extension RANDR)
        for screen in "${screens[@]}"; do
            arguments+=(-screen "$screen")
        done
        DISPLAY=":$(cat "$root/display")" start_server Xephyr "${arguments[@]}"
    fi
    environment+=(DISPLAY=":$(cat "$root/display")")
fi

if [ "$session_bus" = yes ]; then
    # After the display, which the services that it starts may need.
    env -i "${environment[@]}" setpriv --pdeathsig TERM \
        dbus-daemon --session --nofork --nopidfile --address="unix:path=$root/run/bus" \
        >"$root/log/bus" 2>&1 &
    bus=$!
    wait_until "$bus" "the D-Bus session" test -S "$root/run/bus"
fi

if [ "$wm" != none ]; then
    environment+=(PANEL_TEST_WM="$wm")
    read -ra manager_command <<<"$wm"
    env -i "${environment[@]}" setpriv --pdeathsig TERM "${manager_command[@]}" \
        >"$root/log/wm" 2>&1 &
    manager=$!
    wait_until "$manager" "the window manager $wm" \
        env -i "${environment[@]}" sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"'

    # Openbox leaves a window that comes while it starts unmapped until the next event. So one window is
    # shown and taken away first, with events until it is there.
    env -i "${environment[@]}" setpriv --pdeathsig TERM xev -name probe >/dev/null 2>&1 &
    probe=$!
    wait_until "$probe" "a window under $wm" env -i "${environment[@]}" sh -c '
        xprop -root -f PROBE 32c -set PROBE 1 && xprop -name probe WM_STATE | grep -q Normal'
    kill '%?-name probe'
    wait "$probe" 2>/dev/null || :
    wait_until "$manager" "an empty screen under $wm" env -i "${environment[@]}" sh -c '
        xprop -root -remove PROBE && ! xprop -root _NET_CLIENT_LIST | grep -q 0x'
fi

launcher=(env -i "${environment[@]}")
if [ "$pid_namespace" = yes ]; then
    if can_hide_processes; then
        # bash as the first process of the namespace takes in and reaps what is left without a parent.
        launcher+=("${namespace[@]}" bash -c '"$@"; exit $?' bash)
    elif pids=$(pgrep -x Corvane); then
        fail "it can't be hidden from the test that a process named Corvane runs: PID ${pids//$'\n'/ }"
    else
        launcher=(setpriv --pdeathsig TERM "${launcher[@]}" "$(dirname "$(readlink -f "$0")")/adopt.py")
    fi
fi

cd "$root/home"
status=0
"${launcher[@]}" "$@" <&0 &
child=$!
wait "$child" || status=$?
exit "$status"
