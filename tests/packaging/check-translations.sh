#!/usr/bin/env bash
# Whether each translated document has the sections of the English one, and in each section the same
# commands, names, tables, lists and links:
#
#   check-translations.sh SOURCE_FOLDER
set -euo pipefail
export LC_ALL=C
cd "$1"
failures=0

# Both functions print the number of the section and what is no language in it.
markdown() {
    awk '
        function tell(what) { printf "section %02d: %s\n", section, what }
        /^```/ { code = !code; next }
        code { sub(/ +#.*/, ""); tell($0); next }
        /^#/ { ++section; tell($1) }
        /^\|/ {
            numbers = $0
            gsub(/[^0-9.]+/, " ", numbers)
            tell("table row of " gsub(/\|/, "|") " with" numbers)
        }
        /^$/ { tell("end of a paragraph") }
        /^- / { tell("list entry") }
        /^\*\*/ { tell("paragraph with a title") }
        {
            while (match($0, /`[^`]+`|\]\([^)]+\)/)) {
                text = substr($0, RSTART, RLENGTH)
                # Links between the two languages lead both ways.
                sub(/\.zh_CN\.md/, ".md", text)
                tell(text)
                $0 = substr($0, RSTART + RLENGTH)
            }
        }'
}

man_page() {
    awk '
        function tell(what) { printf "section %02d: %s\n", section, what }
        /^\.SH/ { ++section; tell($1) }
        /^\.(TP|PP)/ { tell($1) }
        {
            gsub(/\\f./, " ")
            gsub(/\\-/, "-")
            while (match($0, /[A-Z]+_[A-Z_]+|[ "]-[a-z]+|[a-z-]+ \([1-8]\)/)) {
                tell(substr($0, RSTART, RLENGTH))
                $0 = substr($0, RSTART + RLENGTH)
            }
        }'
}

# compare FORMAT ENGLISH TRANSLATED
compare() {
    # Within a section, another language has another order of words.
    if ! diff -U 3 --label "$2" --label "$3" <("$1" <"$2" | sort) <("$1" <"$3" | sort); then
        echo "FAIL: $3 isn't what $2 is"
        failures=$((failures + 1))
    fi
    [ "$("$1" <"$2" | wc -l)" -gt 20 ] || {
        echo "FAIL: next to nothing is compared in $2"
        failures=$((failures + 1))
    }
}

compare markdown README.md README.zh_CN.md
compare markdown docs/settings-file.md docs/settings-file.zh_CN.md
compare man_page packaging/man/corvane-panel.1.in packaging/man/zh_CN/corvane-panel.1.in

[ "$failures" -eq 0 ]
