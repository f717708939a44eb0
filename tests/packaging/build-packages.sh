#!/usr/bin/env bash
# build-packages.sh SOURCE RELEASE_TREE PACKAGES [CMAKE_ARGUMENT...]
#
# Leaves in the folder PACKAGES the .deb and the .tar.gz of the project, and in PACKAGES/next a .deb
# of the same contents with a higher version number. RELEASE_TREE is configured only where there are
# arguments for it.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

source=$1 tree=$2 packages=$3
shift 3

if [ $# -gt 0 ]; then
    quietly cmake -S "$source" -B "$tree" "$@"
fi
quietly cmake --build "$tree" --target corvane-panel panel_documents

rm -rf "$packages"
mkdir -p "$packages/next"
# Whoever packages may have a narrow umask: what is installed must not.
umask 077
quietly cpack --config "$tree/CPackConfig.cmake" -B "$packages"
quietly cpack --config "$tree/CPackConfig.cmake" -B "$packages/next" -G DEB -R 99.0.0
rm -rf "$packages/_CPack_Packages" "$packages/next/_CPack_Packages"
