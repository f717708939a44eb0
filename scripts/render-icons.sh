#!/usr/bin/env bash
# Renders the icons that aren't used as they are drawn:
#
#   render-icons.sh            writes them into the tree
#   render-icons.sh --check    writes nothing; status 1 and a list where the tree's look different
#
# From resources/sources/*.svg come the .ico files, from resources/application.svg icon.png and the icon
# theme's sizes. Other versions of the tools give other bytes of the same look.
#
# Needs rsvg-convert (Debian: librsvg2-bin) and icotool (icoutils), and for the check ImageMagick.
set -euo pipefail

ico_sizes=(16 24 32 40 48 56 64 96)
theme_sizes=(16 22 24 32 48 64 128 256)
png_size=256
# Root mean square of the difference, as a part of 1: what versions of rsvg-convert make of an edge.
tolerance=0.01

tree=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# render SOURCE SIZE TARGET
render() {
    mkdir -p "$(dirname "$3")"
    rsvg-convert --width "$2" --height "$2" --output "$3" "$1"
}

# render_ico SOURCE TARGET: one file with a 32-bit image of each size.
render_ico() {
    local size
    for size in "${ico_sizes[@]}"; do
        render "$1" "$size" "$scratch/$size"
    done
    mkdir -p "$(dirname "$2")"
    icotool --create --bit-depth=32 --output="$2" "${ico_sizes[@]/#/$scratch/}"
}

# render_all FOLDER: every rendered icon, at its place below FOLDER.
render_all() {
    local source size
    for source in "$tree"/resources/sources/*.svg; do
        render_ico "$source" "$1/resources/$(basename "$source" .svg).ico"
    done
    source=$tree/resources/application.svg
    render "$source" "$png_size" "$1/resources/icon.png"
    for size in "${theme_sizes[@]}"; do
        render "$source" "$size" "$1/packaging/icons/${size}x$size/corvane-panel.png"
    done
}

# same_look ICON ICON: in each of their sizes.
same_look() {
    local difference
    convert "$1" -append "$scratch/left.png"
    convert "$2" -append "$scratch/right.png"
    difference=$(compare -metric RMSE "$scratch/left.png" "$scratch/right.png" null: 2>&1) || :
    awk -F'[()]' -v most="$tolerance" '{ exit !(NF == 3 && $2 <= most) }' <<<"$difference" ||
        { echo "$2 looks different: $difference"; return 1; }
}

if [ "${1-}" != --check ]; then
    render_all "$tree"
    exit
fi
render_all "$scratch/tree"
status=0
while IFS= read -r -d '' icon; do
    same_look "$scratch/tree/$icon" "$tree/$icon" || status=1
done < <(cd "$scratch/tree" && find . -type f -print0 | sort -z)
exit "$status"
