#!/usr/bin/env bash
# What the configure step takes for a host of the web pages, and what it refuses:
#
#   check-hosts.sh CMAKE SOURCE_FOLDER VARIABLE...
set -euo pipefail
cmake=$1
source=$2
shift 2
failures=0

complain() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# check VALUE: the module's own function, without the rest of the tree.
check() {
    cat > check.cmake <<SCRIPT
include("$source/cmake/PanelHosts.cmake")
panel_check_host(PANEL_SERVICE_HALL_HOST)
SCRIPT
    "$cmake" "-DPANEL_SERVICE_HALL_HOST=$1" -P check.cmake >output 2>&1
}

label63=$(printf 'a%.0s' {1..63})
for host in hall.shuochuan.example localhost 127.0.0.1 a.b-c.d9 X "$label63.a" \
    "$label63.$label63.$label63.${label63:0:61}"; do
    check "$host" || complain "\"$host\" is refused: $(cat output)"
done

for host in '' ' ' 'a b' ' a' 'https://a.example' '//a' 'a/' 'a/b' 'a:80' 'a?b' 'a#b' 'a@b' \
    '.a' 'a.' 'a..b' '-a' 'a-' 'a.-b' 'a_b' '总厅.example' "${label63}a" \
    "$label63.$label63.$label63.${label63:0:62}"; do
    if check "$host"; then
        complain "\"$host\" is taken"
    elif ! tr -s ' \n' ' ' <output | grep -qF "PANEL_SERVICE_HALL_HOST is \"$host\", which is no host name."; then
        # A message folds long words into lines of its own.
        tr -d ' \n' <output | grep -qF "PANEL_SERVICE_HALL_HOSTis\"${host// /}\",whichisnohostname." \
            || complain "\"$host\" is refused without saying so: $(cat output)"
    fi
done

# Each variable is looked at by the tree itself.
[ $# -gt 0 ] || complain "no variable is declared"
for variable in "$@"; do
    if "$cmake" -S "$source" -B tree "-D$variable=a/b" -DBUILD_TESTING=OFF >output 2>&1; then
        complain "the tree configures with $variable=a/b"
    elif ! grep -q "$variable is \"a/b\"" output; then
        complain "the tree fails with $variable=a/b, but doesn't say why: $(cat output)"
    fi
    rm -rf tree
done

[ "$failures" -eq 0 ]
