#!/usr/bin/env bash
# Tries both commands of the README on a new machine, with what is committed here:
#
#   clean-room.sh SUITE [--plain]     bullseye, bookworm or trixie: Debian 11, 12 or 13
#
# Makes the minimal root of that release, puts a clean clone into it and runs scripts/run.sh and
# scripts/test.sh there as a container would, with nothing installed yet. With --plain the packages are
# there, and scripts/test.sh runs without privileges, as root and as an ordinary user, under a
# process 1 that reaps nobody. The exit status is 0 where all have passed.
#
# Needs root, and the mirror of Debian that this machine uses. Nothing is left behind but the logs, in
# build/clean-room.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

suite=${1:-}
case "$*" in
bullseye | bookworm | trixie | 'bullseye --plain' | 'bookworm --plain' | 'trixie --plain') ;;
*) fail "takes bullseye, bookworm or trixie, and --plain or nothing" ;;
esac
[ "$(id -u)" -eq 0 ] || fail "needs root, to make the root of another system"
need_packages mmdebstrap git

work=$(mktemp -d)
chmod 755 "$work"
root=$work/root
logs=$project/build/clean-room
mkdir -p "$logs"
clean_up() {
    kill -KILL "${running:-}" 2>/dev/null && { wait "$running" 2>/dev/null || :; }
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# inside COMMAND...: becomes that, in the root as process 1 of a container. Its processes and mounts end
# with it.
inside() {
    # shellcheck disable=SC2016 # the arguments are the inner shell's
    exec unshare --mount --pid --fork --kill-child bash -c '
        mount --bind "$0" "$0"
        mount -t proc proc "$0/proc"
        mount -t tmpfs -o mode=1777 tmpfs "$0/dev/shm"
        exec chroot "$0" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "$@"' "$root" "$@"
}

failed=()
# try NAME COMMAND...: runs it inside and tells what became of it.
try() {
    local name=$suite-$1 start=$SECONDS result=passed
    shift
    inside "$@" >"$logs/$name.log" 2>&1 </dev/null &
    running=$!
    if ! wait "$running"; then
        result=FAILED
        failed+=("$name")
        tail -n 40 "$logs/$name.log"
    fi
    running=
    say "$name: $result in $((SECONDS - start)) s"
}

# clone FOLDER USER: a clean clone there, which is that user's.
clone() {
    git clone -q --no-local "$project" "$root/$1"
    (inside chown -R "$2:" "/$1")
}

say "making the root of $suite"
if [ $# -eq 1 ]; then
    make_root "$suite" "$root"
    clone panel root
    try run /panel/scripts/run.sh
    try test /panel/scripts/test.sh
else
    make_root "$suite" "$root" "${build_packages[@]}" "${run_packages[@]}" "${display_packages[@]}" \
        "${test_packages[@]}"
    (inside useradd --create-home tester)
    clone panel root
    clone home/tester/panel tester
    # Inside a chroot nobody may make a user namespace either.
    without=(setpriv --bounding-set=-sys_admin --inh-caps=-sys_admin)
    try plain-root "${without[@]}" /panel/scripts/test.sh
    try plain-user "${without[@]}" --reuid=tester --regid=tester --clear-groups \
        /home/tester/panel/scripts/test.sh
fi
[ ${#failed[@]} -eq 0 ] || fail "failed: ${failed[*]}, see $logs"
