#!/usr/bin/env bash
# Renders every picture of the tree that isn't drawn by hand from those that are:
#
#   render-pictures.sh            writes them into the tree
#   render-pictures.sh --check    writes nothing; status 1 and a list where the tree's look otherwise
#
# The window's own pictures (resources/*.svg) are used as they are drawn. From resources/sources/*.svg
# come the .ico files, and from resources/application.svg come icon.png and the icon theme's sizes.
# The same sources and the same tools give the same bytes; other versions of the tools, other bytes of
# the same look.
#
# Needs rsvg-convert (Debian: librsvg2-bin) and icotool (icoutils), and for the check ImageMagick.
set -euo pipefail

readonly ico_sizes=(16 24 32 40 48 56 64 96)
readonly theme_sizes=(16 22 24 32 48 64 128 256)
readonly png_size=256
readonly theme_name=corvane-panel
# Root mean square of the difference, as a part of 1: what versions of rsvg-convert make of an edge.
readonly tolerance=0.01

tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
readonly tree

die() {
    echo "render-pictures.sh: $*" >&2
    exit 2
}

# render SOURCE SIZE TARGET
render() {
    mkdir -p "$(dirname "$3")"
    rsvg-convert --width "$2" --height "$2" --output "$3" "$1"
}

# render_ico SOURCE TARGET: one file with a 32-bit picture of each size.
render_ico() {
    local pictures=() size
    for size in "${ico_sizes[@]}"; do
        render "$1" "$size" "$scratch/$size.png"
        pictures+=("$scratch/$size.png")
    done
    mkdir -p "$(dirname "$2")"
    icotool --create --bit-depth=32 --output="$2" "${pictures[@]}"
}

# render_all FOLDER: every rendered picture, at its place below FOLDER.
render_all() {
    local source size
    for source in "$tree"/resources/sources/*.svg; do
        render_ico "$source" "$1/resources/$(basename "$source" .svg).ico"
    done
    source=$tree/resources/application.svg
    render "$source" "$png_size" "$1/resources/icon.png"
    for size in "${theme_sizes[@]}"; do
        render "$source" "$size" "$1/packaging/icons/${size}x$size/$theme_name.png"
    done
}

# same_look PICTURE PICTURE: in each of their sizes.
same_look() {
    local difference
    convert "$1" -append "$scratch/left.png"
    convert "$2" -append "$scratch/right.png"
    difference=$(compare -metric RMSE "$scratch/left.png" "$scratch/right.png" null: 2>&1) || :
    awk -F'[()]' -v most="$tolerance" '{ exit !(NF == 3 && $2 <= most) }' <<<"$difference" ||
        { echo "$2 looks otherwise: $difference"; return 1; }
}

for tool in rsvg-convert icotool; do
    command -v "$tool" >/dev/null || die "$tool is missing"
done
scratch=$(mktemp -d)
readonly scratch
trap 'rm -rf "$scratch"' EXIT

case "${1-}" in
"")
    render_all "$tree"
    ;;
--check)
    render_all "$scratch/tree"
    status=0
    while IFS= read -r -d '' picture; do
        same_look "$scratch/tree/$picture" "$tree/$picture" || status=1
    done < <(cd "$scratch/tree" && find . -type f -print0 | sort -z)
    exit "$status"
    ;;
*)
    die "unknown argument $1"
    ;;
esac
