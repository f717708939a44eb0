#!/usr/bin/env bash
# Runs a command that has a small disk to itself:
#
#   small-disk.sh KILOBYTES COMMAND...
#
# The disk is a tmpfs in a mount namespace of its own, which ends with the command; the variable
# PANEL_TEST_SMALL_DISK names its folder. The exit status is the command's; 70 where no such disk
# can be had.
set -euo pipefail

kilobytes=$1
shift
namespace=(unshare --mount)
if [ "$(id -u)" -ne 0 ]; then
    namespace+=(--user --map-root-user)
fi
folder=$(mktemp -d "${TMPDIR:-/tmp}/small-disk.XXXXXX")
trap 'rmdir "$folder"' EXIT

if ! "${namespace[@]}" mount -t tmpfs -o "size=${kilobytes}k" tmpfs "$folder" 2>/dev/null; then
    echo "small-disk.sh: this user may not mount a disk, not even in a namespace of its own" >&2
    exit 70
fi
PANEL_TEST_SMALL_DISK=$folder "${namespace[@]}" bash -c \
    'mount -t tmpfs -o "size=$1k" tmpfs "$PANEL_TEST_SMALL_DISK"; shift; exec "$@"' \
    bash "$kilobytes" "$@"
