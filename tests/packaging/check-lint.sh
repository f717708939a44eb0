#!/usr/bin/env bash
# check-lint.sh PACKAGES: what Debian's and the desktop's own checkers say at their strictest.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

deb=$(only "$1"/*.deb)
dpkg-deb --extract "$deb" "$scratch/deb"
share=$scratch/deb/usr/share

quietly desktop-file-validate --warn-kde "$share/applications/corvane-panel.desktop"
[ ! -s "$scratch/output" ] || fail "desktop entry: $(cat "$scratch/output")"

# The maker's domain is under the reserved .example, which the checker doesn't know as a domain.
quietly appstreamcli validate --no-net --pedantic --strict --no-color \
    --override=cid-maybe-not-rdns=pedantic "$(only "$share"/metainfo/*.xml)"
remarks=$(awk '/^[EWIP]:/ && !/ cid-maybe-not-rdns /' "$scratch/output")
[ -z "$remarks" ] || fail "metadata: $remarks"

quietly lintian --allow-root --no-cfg --pedantic --display-info --display-experimental \
    --fail-on error,warning,info,pedantic,experimental "$deb"

page=$(only "$share"/man/man1/*.gz)
MANWIDTH=80 man --warnings --local-file "$page" >"$scratch/page" 2>"$scratch/remarks"
[ -s "$scratch/page" ] || fail "the manual page is empty"
[ ! -s "$scratch/remarks" ] || fail "manual page: $(cat "$scratch/remarks")"
