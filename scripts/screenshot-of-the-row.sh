#!/usr/bin/env bash
# Starts the panel on the display at hand, waits until its page shows the daemon's row, and saves a
# screenshot of the window:
#
#   screenshot-of-the-row.sh PANEL SCREENSHOT
#
# Ends with 0 only if the row was there. Ends the panel and the daemon that it started.
set -euo pipefail
panel=$1
screenshot=$2

# The row's background, a colour that nothing else in the window has, and how much of it a row shows at
# least: more than half of 780 x 38 pixels.
row_colour='#E7ECF7'
row_pixels=15000
patience=30

record=$PWD/Corvane.record
# The daemon ends when nobody has this open.
mkfifo "$PWD/running"
exec 9<>"$PWD/running"
CORVANE_RECORD=$record CORVANE_WHILE_OPEN=$PWD/running "$panel" 9>&- &
panel_pid=$!
trap 'kill %1 2>/dev/null && { wait %1 2>/dev/null || :; }' EXIT

row_in() {
    local count
    count=$(/usr/bin/convert "$1" -fill black +opaque "$row_colour" -fill white -opaque "$row_colour" \
        -format '%[fx:int(mean*w*h+0.5)]' info:)
    [ "$count" -ge "$row_pixels" ]
}

deadline=$((SECONDS + patience))
until [ -n "${window:-}" ] && import -window "$window" "$screenshot" 2>/dev/null && row_in "$screenshot"; do
    kill -0 "$panel_pid" 2>/dev/null || { echo "the panel has ended" >&2; exit 1; }
    [ "$SECONDS" -lt "$deadline" ] || { echo "the page shows no row" >&2; exit 1; }
    window=$(xdotool search --onlyvisible --pid "$panel_pid" 2>/dev/null | tail -n 1) || window=
    sleep 0.1
done

# The row is that of the daemon which the panel has started, unless one was running already.
[ ! -f "$record" ] || kill -0 "$(sed -n 's/^pid=//p' "$record")"
