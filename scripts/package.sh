#!/usr/bin/env bash
# Builds the Debian package of the last commit in a clean root, and has Debian's own tools check it:
#
#   package.sh SUITE       bullseye, bookworm or trixie: Debian 11, 12 or 13
#
# Needs root. The package and the log of each tool are left in build/package/SUITE.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
. "$project/scripts/common.sh"

suite=${1:?the name of a Debian release is missing}
results=$project/build/package/$suite
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
export -n TMPDIR

# in_root COMMAND...: its processes and mounts end with the command.
in_root() {
    # shellcheck disable=SC2016 # the arguments are the inner shell's
    unshare --mount --pid --fork --kill-child sh -c '
        mount --rbind /dev "$0/dev" && mount -t sysfs sysfs "$0/sys" && mount -t proc proc "$0/proc" &&
        exec chroot "$0" "$@"' "$work/build" "$@"
}

# get ARGUMENT...: apt-get in the root for building.
get() {
    in_root apt-get -q -y --no-install-recommends "$@"
}

# check TOOL COMMAND...: what it prints goes to the tool's log.
check() {
    say "$1"
    in_root "${@:2}" >"$results/$1.log" 2>&1 || {
        cat "$results/$1.log"
        fail "$1 has failed"
    }
}

# build USER FOLDER ARGUMENT...: the last commit in a user's folder, with arguments for
# dpkg-buildpackage. Leaves what comes of it in $work/USER.
build() {
    local home=/home/$1
    in_root useradd --create-home "$1"
    git -C "$project" archive --prefix="$2/" "$commit" | in_root runuser -u "$1" -- tar -C "$home" -x
    in_root runuser -u "$1" -- env -C "$home/$2" dpkg-buildpackage -us -uc "${@:3}"
    mkdir "$work/$1"
    find "$work/build$home" -maxdepth 1 -type f -name 'corvane-panel*' -exec cp -t "$work/$1" {} +
}

need_packages mmdebstrap git
commit=$(git -C "$project" rev-parse HEAD)
rm -rf "$results"
mkdir -p "$results"

say 'building'
make_root "$suite" "$work/fresh"
cp -a "$work/fresh" "$work/build"
get update
get install locales
in_root localedef -i tr_TR -f UTF-8 tr_TR.UTF-8
mkdir "$work/build/source"
git -C "$project" archive "$commit" debian | tar -C "$work/build/source" -x
get build-dep /source
build first corvane-panel 2>&1 | tee "$results/build.log"
cp "$work"/first/* "$results"

say 'building again: another user, folder, time, locale, time zone and umask, and without the tests'
(umask 077 && LC_ALL=tr_TR.UTF-8 TZ=Asia/Shanghai DEB_BUILD_OPTIONS=nocheck \
    build second another-folder -b) >"$results/build-again.log" 2>&1
for package in "$work"/first/*.deb; do
    cmp "$package" "$work/second/${package##*/}"
done

get install appstream autopkgtest blhc desktop-file-utils lintian piuparts
cp -r "$results" "$work/build/package"
check extract sh -c 'dpkg-deb --extract /package/corvane-panel_*.deb /extracted'
# Lintian of the older releases does not know the version of the policy that the newest one asks for.
check lintian sh -c 'lintian --allow-root --no-cfg --pedantic --display-info \
    --suppress-tags newer-standards-version,unused-override \
    --fail-on error,warning,info,pedantic /package/*.changes'
# CMake 3.18 has the compiler list its macros, which compiles nothing.
check blhc blhc --all --debian --ignore-line '.* -dM -E .*' /package/build.log
check desktop-file-validate sh -c 'desktop-file-validate /extracted/usr/share/applications/*.desktop'
check appstreamcli sh -c 'appstreamcli validate --no-net /extracted/usr/share/metainfo/*.xml'

# A root with some user's settings, whose archive has the version before: PREVIOUS, or the same
# package under a lower number.
mv "$work/fresh" "$work/build/purge"
mkdir -p "$work/build/purge/archive" "$work/build/purge/home/user/.config/KqVantora"
printf '[log]\ndays=14\n' >"$work/build/purge/home/user/.config/KqVantora/settings.ini"
echo 'deb [trusted=yes] file:/archive ./' >"$work/build/purge/etc/apt/sources.list.d/archive.list"
if [ -n "${PREVIOUS:-}" ]; then
    cp "$PREVIOUS" "$work/build/purge/archive"
else
    check previous sh -c 'dpkg-deb -R /package/corvane-panel_*.deb /previous &&
        sed -i "s/^Version: .*/&~/" /previous/DEBIAN/control &&
        dpkg-deb -b /previous /purge/archive'
fi
check archive sh -c 'cd /purge/archive && dpkg-scanpackages . >Packages'
# fontconfig of Debian 11 leaves files named .uuid behind.
check piuparts sh -c "piuparts --existing-chroot=/purge --keep-sources-list --distribution=$suite \\
    --no-eatmydata --warn-on-others --ignore-regex='.*/share/fonts/(.uuid)?' /package/corvane-panel_*.deb"
grep -q 'PASS: Installation, upgrade and purging tests' "$results/piuparts.log" || fail 'the upgrade was not tried'

check autopkgtest sh -c 'autopkgtest --no-built-binaries /package/*.changes -- null'
say "Debian $suite: the package and the logs are in $results"
