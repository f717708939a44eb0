# For the scripts beside this one.
set -Eeuo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
scratch=$(mktemp -d)
readonly scratch
trap 'rm -rf "$scratch"' EXIT
trap 'echo "$(basename "$0"): line $LINENO has failed" >&2' ERR

fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# quietly COMMAND...: what it prints is shown only when it fails.
quietly() {
    "$@" >"$scratch/output" 2>&1 || {
        cat "$scratch/output" >&2
        fail "failed: $*"
    }
}

# only FILE...: the one file that the pattern has found.
only() {
    [ $# -eq 1 ] && [ -f "$1" ] || fail "expected one file, found: $*"
    echo "$1"
}
