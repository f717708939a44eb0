#!/usr/bin/env bash
# Whether the tree can be packaged for other systems than Debian:
#
#   check-install.sh CMAKE SOURCE_FOLDER
set -euo pipefail
cmake=$1
source=$2
failures=0

complain() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# configure ARGUMENT...
configure() {
    "$cmake" -S tree -B build -DBUILD_TESTING=OFF -DPANEL_LTO=OFF "$@" >output 2>&1 ||
        complain "the tree doesn't configure with $*: $(cat output)"
}

# The tree without debian/, and with changes on top that aren't released yet.
mkdir tree
for path in "$source"/*; do
    case ${path##*/} in
    build* | debian | obj-*) ;;
    *) cp -R "$path" tree ;;
    esac
done
sed -i '0,/^## /s//## Unreleased\n\n- A change.\n\n&/' tree/CHANGELOG.md
configure
! grep -n "$PWD/tree/debian" build/packaging/cmake_install.cmake || complain "debian/ is needed to install"
[ "$(sed -n 's/.*<release .*date="\(.*\)".*/\1/p' build/packaging/*.metainfo.xml)" = \
    "$(sed -n 's/^## [0-9].*, //p' "$source/CHANGELOG.md" | head -n 1)" ] ||
    complain "the release has another date than CHANGELOG.md's"

# link_is EXPECTED
link_is() {
    [ "$(readlink build/packaging/link/corvane-panel)" = "$1" ] ||
        complain "the link is $(readlink build/packaging/link/corvane-panel), not $1"
}

link_is ../lib/corvane-panel/corvane-panel
configure -DCMAKE_INSTALL_PREFIX=/opt/panel -DCMAKE_INSTALL_BINDIR=/usr/bin
link_is /opt/panel/lib/corvane-panel/corvane-panel
configure -DCMAKE_INSTALL_BINDIR=usr/local/bin
link_is ../../../lib/corvane-panel/corvane-panel

[ "$failures" -eq 0 ]
