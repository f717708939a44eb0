#!/usr/bin/env bash
# check-contents.sh RELEASE_TREE PACKAGES
#
# What "cmake --install" and the two packages bring is what contents.txt lists, to the mode of each
# file; and the .deb names the packages that the program can't do without.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

tree=$1
deb=$(only "$2"/*.deb)
archive=$(only "$2"/*.tar.gz)

# list FOLDER: mode, path and, of a link, where it leads.
list() {
    find "$1" -mindepth 1 \( -type l -printf '%M %P -> %l\n' -o -printf '%M %P\n' \) |
        LC_ALL=C sort -k 2
}

# compare NAME FOLDER LISTING...
compare() {
    local name=$1 folder=$2
    shift 2
    list "$folder" >"$scratch/actual"
    grep -hv '^#' "$@" | LC_ALL=C sort -k 2 >"$scratch/expected"
    diff -u --label expected --label "$name" "$scratch/expected" "$scratch/actual" ||
        fail "$name holds something else"
}

umask 022
DESTDIR=$scratch/installed quietly cmake --install "$tree" --prefix /prefix
compare "cmake --install" "$scratch/installed/prefix" "$here/contents.txt"

mkdir "$scratch/archive"
tar --extract --preserve-permissions --strip-components 1 --file "$archive" -C "$scratch/archive"
compare "the archive" "$scratch/archive" "$here/contents.txt"

dpkg-deb --extract "$deb" "$scratch/deb"
compare "the Debian package" "$scratch/deb/usr" "$here/contents.txt" "$here/contents-debian.txt"
[ "$(ls "$scratch/deb")" = usr ] || fail "the Debian package holds more than /usr"
strangers=$(dpkg-deb --fsys-tarfile "$deb" | tar --list --verbose | awk '$2 != "root/root"')
[ -z "$strangers" ] || fail "not root's: $strangers"
dpkg-deb --control "$deb" "$scratch/control"
[ "$(cd "$scratch/control" && echo *)" = "control md5sums" ] ||
    fail "the Debian package runs scripts or has configuration files: $(ls "$scratch/control")"

if grep -qaF "$(cd "$here/../.." && pwd)" "$scratch/deb/usr/lib/corvane-panel/corvane-panel"; then
    fail "the program names the folder that it was built in"
fi

# Alternatives and versions aside.
dependencies=$(dpkg-deb --field "$deb" Depends | sed 's/ *([^)]*)//g; s/|[^,]*//g; s/, */\n/g; s/ //g')

# owner FILE: the package that brings it, also where /bin is a link to /usr/bin since.
owner() {
    dpkg-query --search "$1" 2>"$scratch/errors" || dpkg-query --search "${1#/usr}"
}

# needs FILE: the package that brings it must be depended on, or be essential.
needs() {
    local package
    package=$(owner "$1" | sed 's/:.*//')
    [ -n "$package" ] || fail "$1 isn't on this machine"
    [ "$(dpkg-query --show --showformat '${Essential}' "$package")" = yes ] ||
        grep -qxF "$package" <<<"$dependencies" ||
        fail "$1 comes with $package, which isn't in Depends"
}

plugins=$(echo /usr/lib/*/qt5/plugins)
needs "$plugins/platforms/libqxcb.so"
needs "$plugins/imageformats/libqsvg.so"
needs "$plugins/iconengines/libqsvgicon.so"
needs "$plugins/imageformats/libqico.so"
needs /usr/bin/bash
needs /usr/bin/grep
needs /usr/bin/pgrep
needs /usr/bin/ps
needs /usr/bin/xdg-open
dpkg-query --show --showformat '${Pre-Depends}' base-files | grep -qw awk ||
    fail "nothing essential brings an awk"

while IFS= read -r package; do
    [ "$(dpkg-query --show --showformat '${Essential}' "$package")" != yes ] ||
        fail "$package is essential and needs no mention in Depends"
done <<<"$dependencies"

dpkg-deb --field "$deb" Recommends | grep -qw fonts-noto-cjk ||
    fail "no font for Chinese is recommended"
