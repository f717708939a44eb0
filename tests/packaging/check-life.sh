#!/usr/bin/env bash
# check-life.sh PACKAGES DAEMON
#
# Installs the Debian package in a root of its own, starts the panel through its link, upgrades,
# removes and purges; looks at what is left each time, and at the user's settings.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

deb=$(only "$1"/*.deb)
next=$(only "$1"/next/*.deb)
daemon=$2

root=$scratch/root
own_folder=$root/usr/lib/corvane-panel
settings=$XDG_CONFIG_HOME/KqVantora/settings.ini
mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers} "$(dirname "$settings")"
# The dependencies are looked for among what this machine has installed.
awk 'BEGIN { RS = ""; ORS = "\n\n" } !/^Package: corvane-panel\n/' /var/lib/dpkg/status \
    >"$root/var/lib/dpkg/status"
printf '; mine\n[log]\nlevel=Warning\n[other]\nkey=kept\n' >"$settings"

in_root() {
    quietly timeout 60 fakeroot dpkg --root="$root" --log="$scratch/dpkg.log" --force-not-root \
        --path-include='/*' "$@"
}

installed_version() {
    dpkg-query --admindir="$root/var/lib/dpkg" --show --showformat '${db:Status-Abbrev}${Version}' \
        corvane-panel
}

# Everything but dpkg's own records.
leftovers() {
    find "$root" -path "$root/var" -prune -o -mindepth 1 -print
}

# without_touching_settings COMMAND...
without_touching_settings() {
    local before
    before=$(stat --format '%i %y %a' "$settings"; cat "$settings")
    "$@"
    [ "$(stat --format '%i %y %a' "$settings"; cat "$settings")" = "$before" ] ||
        fail "the user's settings have changed: $*"
}

# wait_for DESCRIPTION COMMAND...: until the command succeeds; gives up after a minute.
wait_for() {
    local what=$1
    local deadline=$((SECONDS + 60))
    shift
    until "$@" >"$scratch/answer" 2>&1; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$what: not within a minute: $(cat "$scratch/log")"
        sleep 0.05
    done
}

# has_ended PID: whether there is no such process any more, nor what is left of it for its parent.
has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

# Starts the panel through the link beside a daemon, as that has a package of its own, and closes
# the window.
run_panel() {
    cp "$daemon" "$own_folder/Corvane"
    rm -f "$scratch/record"
    CORVANE_RECORD=$scratch/record QT_FORCE_STDERR_LOGGING=1 PATH=$root/usr/bin:$PATH \
        corvane-panel 2>"$scratch/log" &
    panel=$!

    wait_for "the window comes up" xdotool search --onlyvisible --pid "$panel"
    local window class
    window=$(head -n 1 "$scratch/answer")
    class=$(xprop -id "$window" WM_CLASS | sed 's/.*, "\(.*\)"$/\1/')
    grep -qxF "StartupWMClass=$class" "$root/usr/share/applications/corvane-panel.desktop" ||
        fail "the class of the window is $class, the desktop entry says something else"

    grep -qF "file: \"$own_folder/Corvane\"" "$scratch/log" ||
        fail "the panel looks elsewhere for the daemon: $(cat "$scratch/log")"
    wait_for "the panel starts the daemon" test -e "$scratch/record"
    grep -qxF "directory=$own_folder" "$scratch/record" || fail "the daemon runs in another folder"
    grep -qxF "argument=quickboot" "$scratch/record" || fail "the daemon lacks its argument"

    # As from a taskbar: no key that could get lost between the programs.
    wmctrl -i -c "$window"
    local status=0
    wait_for "the panel closes" has_ended "$panel"
    wait "$panel" || status=$?
    [ "$status" -eq 0 ] || fail "the panel ended with status $status: $(cat "$scratch/log")"

    # The next panel must not find it.
    local pid
    pid=$(sed -n 's/^pid=//p' "$scratch/record")
    kill "$pid"
    wait_for "the daemon ends" has_ended "$pid"
    rm "$own_folder/Corvane"
}

without_touching_settings in_root --install "$deb"
[ "$(installed_version)" = "ii $(dpkg-deb --field "$deb" Version)" ] || fail "not installed"
[ -L "$root/usr/bin/corvane-panel" ] || fail "there is no link"
run_panel

without_touching_settings in_root --install "$next"
[ "$(installed_version)" = "ii 99.0.0" ] || fail "not upgraded: $(installed_version)"
run_panel

without_touching_settings in_root --remove corvane-panel
[ -z "$(leftovers)" ] || fail "left behind by the removal: $(leftovers)"

without_touching_settings in_root --install "$deb"
without_touching_settings in_root --purge corvane-panel
[ -z "$(leftovers)" ] || fail "left behind by the purge: $(leftovers)"
if installed_version >"$scratch/output" 2>&1; then
    fail "dpkg still knows it: $(cat "$scratch/output")"
fi
[ -z "$(find "$root/var/lib/dpkg/info" -name 'corvane-panel*')" ] || fail "dpkg kept records of it"
