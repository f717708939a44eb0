# What the scripts beside this one and .ci/run share. To be sourced with the project's folder in
# $project.

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

# need_packages PACKAGE...: installs what is missing, as root or through sudo. Where neither is to be
# had it prints the command to type and ends the script. Calls no package manager when nothing is
# missing.
need_packages() {
    local missing prefix=()
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

# configure FOLDER ARGUMENT...: configures the tree into build/FOLDER.
configure() {
    local folder=$1
    shift
    cmake -S "$project" -B "$project/build/$folder" -G Ninja "$@"
}
