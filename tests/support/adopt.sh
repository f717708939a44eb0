#!/usr/bin/env bash
# Runs a command, then ends and reaps all that it leaves behind, for systems without PID namespaces:
#
#   adopt.sh COMMAND...
#
# The exit status is the command's; 70 where that can't be told. When this script ends before the
# command does, the command ends with it.
set -euo pipefail

if [ "${1-}" != --adopted ]; then
    # The subreaper is no descendant of this script: ctest kills all of those where a test runs out of
    # time, and where process 1 reaps nobody, pgrep would list the test's daemons forever.
    folder=$(mktemp -d)
    mkfifo "$folder/alive" "$folder/status"
    (exec 9>"$folder/status" 8<"$folder/alive" && exec setsid tini -s -- "$0" --adopted "$@" &)
    exec 9<"$folder/status" 8>"$folder/alive"
    rm -r "$folder"
    # It is closed in any case when this process ends.
    trap 'exec 8>&-' TERM INT HUP
    read -r status <&9 || status=70
    exit "$status"
fi

shift
"$@" 8<&- 9>&- &
command=$!
{ read -r || kill -KILL "$command"; } <&8 9>&- 2>/dev/null &
watch=$!
status=0
wait "$command" 2>/dev/null || status=$?

# What has lost its parent is tini's child, as this process is.
kill "$watch" 2>/dev/null || :
while mapfile -t orphans < <(pgrep -P "$PPID" | grep -vx "$$") && [ ${#orphans[@]} -gt 0 ]; do
    kill -KILL "${orphans[@]}" 2>/dev/null || :
    sleep 0.02
done
echo "$status" >&9
