#!/usr/bin/env bash
# Whether every place that names the last release names the same one:
#
#   check-versions.sh SOURCE_FOLDER BUILD_FOLDER VERSION
set -euo pipefail
source=$1
build=$2
version=$3
failures=0

# same WHERE FOUND EXPECTED
same() {
    [ "$2" = "$3" ] || {
        echo "FAIL: $1 says \"$2\", where \"$3\" is expected"
        failures=$((failures + 1))
    }
}

# The entry on top may be that of changes which aren't released yet.
mapfile -t entries < <(sed -n 's/^## //p' "$source/CHANGELOG.md")
[ "${entries[0]}" != Unreleased ] || entries=("${entries[@]:1}")
same CHANGELOG.md "${entries[0]%,*}" "$version"
date=${entries[0]#*, }
same 'the date in CHANGELOG.md' "$date" "$(date --date "$date" +%F)"

if [ -f "$source/debian/changelog" ]; then
    # The same there; a hyphen and a number after it would be Debian's own.
    entry=$(grep '^[a-z]' "$source/debian/changelog" | grep -v -m 1 ') UNRELEASED;')
    same debian/changelog "$(sed -E 's/^[^(]*\(([0-9.]*).*/\1/' <<<"$entry")" "$version"
fi

same 'the metadata of software catalogues' \
    "$(sed -n 's/.*<release \(.*\)\/>/\1/p' "$build"/packaging/*.metainfo.xml)" \
    "version=\"$version\" date=\"$date\""
for page in "$build"/packaging/man/{,zh_CN/}corvane-panel.1; do
    same "$page" "$(sed -n 's/^\.TH [^ ]* 1 \("[^"]*" "[^"]*"\).*/\1/p' "$page")" \
        "\"$date\" \"corvane\\-panel $version\""
done

[ "$failures" -eq 0 ]
