#!/usr/bin/env bash
# compare-readmes.sh FOLDER: both READMEs show the same commands, and the same build options with the
# same values.
set -euo pipefail
cd "$1"

shown() {
    awk '/^```/ { code = /^```sh/; next } code { sub(/ +#.*/, ""); print }' "$1"
    # shellcheck disable=SC2016 # backquotes of Markdown
    grep '^| `PANEL_' "$1" | grep -o '`[^`]*`' | sort
}

[ "$(shown README.md | wc -l)" -gt 10 ]
diff <(shown README.md) <(shown README.zh_CN.md)
