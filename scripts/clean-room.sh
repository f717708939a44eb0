#!/usr/bin/env bash
# Tries both commands of the README on a new machine, with what is committed here:
#
#   clean-room.sh SUITE [--plain|--user]     bullseye, bookworm or trixie: Debian 11, 12 or 13; or sid
#
# Makes the minimal root of that release, puts a clean clone into it, and runs scripts/run.sh and
# scripts/test.sh there, with nothing installed yet. The exit status is 0 where all have passed.
#
#   as root      where nothing else is asked for
#   --user       as an ordinary user, who may make user namespaces, and installs packages through sudo
#   --plain      as root in a container: with Docker's default capabilities, without namespaces, and with
#                a process 1 that reaps nobody; then scripts/test.sh as an ordinary user in there
#
# Needs root, and the mirror of Debian that this machine uses. Nothing is left behind but the logs, in
# build/clean-room.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

suite=${1:-}
form=${2:-}
[[ "$*" =~ ^(bullseye|bookworm|trixie|sid)(\ --(plain|user))?$ ]] ||
    fail "takes bullseye, bookworm, trixie or sid, and --plain, --user or nothing"
[ "$(id -u)" -eq 0 ] || fail "needs root, to make the root of another system"
need_packages mmdebstrap git

work=$(mktemp -d)
chmod 755 "$work"
root=$work/root
logs=$project/build/clean-room
mkdir -p "$logs"
clean_up() {
    # By job: bash signals nothing that it has reaped.
    kill -KILL %% 2>/dev/null && { wait %% 2>/dev/null || :; }
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# inside COMMAND...: becomes that, in the root as process 1 of a container. Its processes and mounts end
# with it. After pivot_root there may be user namespaces; in a mere chroot the kernel refuses them.
inside() {
    # shellcheck disable=SC2016 # the arguments are the inner shell's
    exec unshare --mount --pid --fork --kill-child bash -c '
        cd "$0" && mount --bind . . && cd "$0" &&
        mount -t proc proc proc && mount -t tmpfs -o mode=1777 tmpfs dev/shm || exit
        [ "$1" = --plain ] || { pivot_root . . && umount -l .; } || exit
        exec chroot . env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "${@:2}"' "$root" "$form" "$@"
}

failed=()
# try NAME COMMAND...: runs it inside and tells what became of it.
try() {
    local name=$suite${form#-}-$1 start=$SECONDS result=passed
    shift
    inside "$@" >"$logs/$name.log" 2>&1 </dev/null &
    if ! wait $!; then
        result=FAILED
        failed+=("$name")
        tail -n 40 "$logs/$name.log"
    fi
    say "$name: $result in $((SECONDS - start)) s, load $(cut -d ' ' -f 1-3 /proc/loadavg)"
}

# clone FOLDER USER: a clean clone there, which is that user's.
clone() {
    git clone -q --no-local "$project" "$root/$1"
    (inside chown -R "$2:" "/$1")
}

say "making the root of $suite"
packages=()
[ "$form" != --user ] || packages=(sudo)
make_root "$suite" "$root" "${packages[@]}"
namespaces=yes
if [ -z "$form" ]; then
    clone panel root
    try run /panel/scripts/run.sh
    try test /panel/scripts/test.sh
else
    # ps cuts off a name of more than eight letters.
    (inside useradd --create-home --shell /bin/bash developer)
    clone home/developer/panel developer
    user=(runuser --login developer --command)
fi
if [ "$form" = --user ]; then
    echo 'developer ALL=(ALL) NOPASSWD: ALL' >"$root/etc/sudoers.d/developer"
    try run "${user[@]}" /home/developer/panel/scripts/run.sh
    try test "${user[@]}" /home/developer/panel/scripts/test.sh
elif [ "$form" = --plain ]; then
    namespaces=no
    clone panel root
    capabilities=(chown dac_override fowner fsetid kill setgid setuid setpcap net_bind_service net_raw
        sys_chroot mknod audit_write setfcap)
    # shellcheck disable=SC2016 # variables of Perl
    plain=(setpriv --inh-caps=-all --bounding-set="-all$(printf ',+%s' "${capabilities[@]}")"
        perl -e 'my $pid = fork // die; exec @ARGV or die if !$pid; waitpid $pid, 0; exit($? ? 1 : 0)')
    try run "${plain[@]}" /panel/scripts/run.sh
    try test "${plain[@]}" /panel/scripts/test.sh
    try test-user "${plain[@]}" "${user[@]}" /home/developer/panel/scripts/test.sh
fi
# A container that isn't what it should be would try something else.
for log in "$logs/$suite${form#-}"-test*.log; do
    grep -q "PID namespaces: $namespaces" "$log" || fail "PID namespaces should be: $namespaces, see $log"
done
[ ${#failed[@]} -eq 0 ] || fail "failed: ${failed[*]}, see $logs"
