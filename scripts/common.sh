# What the scripts beside this one and .ci/run share. To be sourced with the project's folder in
# $project.

# shellcheck shell=bash disable=SC2154
. "$project/scripts/packages.sh"

say() {
    printf '%s: %s\n' "${0##*/}" "$*"
}

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# missing_packages PACKAGE...: those that aren't installed, one a line.
missing_packages() {
    local package
    for package in "$@"; do
        case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" in
        *' installed') ;;
        *) printf '%s\n' "$package" ;;
        esac
    done
}

# need_packages PACKAGE...: installs what is missing, as root or through sudo. Where neither is
# available it prints the command to type and ends the script. Calls no package manager when nothing is
# missing. On a system that isn't Debian's it only looks for what the packages are needed for.
need_packages() {
    local missing prefix=()
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        need_tools "$@"
        return
    fi
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0

    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            fail "packages are missing. As root, type:
    apt-get update && apt-get install --no-install-recommends ${missing[*]}"
        fi
        prefix=(sudo)
    fi
    say "installing ${missing[*]}"
    "${prefix[@]}" apt-get update -q
    "${prefix[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# need_tools PACKAGE...: ends the script where a program of these Debian packages is missing, and names
# it. What is no program, such as Qt, the configure step looks for.
need_tools() {
    local package tools tool missing=()
    for package in "$@"; do
        read -ra tools <<<"${tools_of[$package]:-}"
        for tool in "${tools[@]}"; do
            command -v "$tool" >/dev/null || missing+=("$tool (Debian: $package)")
        done
    done
    [ ${#missing[@]} -eq 0 ] || fail "this system has no apt-get, and these programs are missing:
$(printf '    %s\n' "${missing[@]}")
Install them by this system's own means, with Qt 5 for development (Core, Gui, Widgets, Network, Test),
its SVG plug-in, xcb-randr and xcb-xfixes for development, and a font with Chinese glyphs."
}

# configure FOLDER ARGUMENT...: configures the tree into build/FOLDER.
configure() {
    local folder=$1
    shift
    cmake -S "$project" -B "$project/build/$folder" -G Ninja "$@"
}

# make_root SUITE FOLDER [PACKAGE...]: makes the root of a minimal Debian release, with those packages,
# from the mirror that this machine uses. Needs root and mmdebstrap.
make_root() {
    local suite=$1 folder=$2 mirror
    shift 2
    [ "$(id -u)" -eq 0 ] || fail "needs root, to make the root of another system"
    # shellcheck disable=SC2016 # a format of apt, not of the shell
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Label: Debian' | head -n 1) || :
    [ -n "$mirror" ] || fail "no Debian mirror is known to this machine's apt (apt-get update?)"
    # A mirror may be a snapshot, whose lists have expired.
    mmdebstrap --quiet --variant=minbase --aptopt='Acquire::Check-Valid-Until "false"' \
        ${1+"--include=$*"} "$suite" "$folder" "$mirror" ||
        fail "no root of $suite from $mirror"
}
