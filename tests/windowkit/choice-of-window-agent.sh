#!/usr/bin/env bash
# Configures the tree with each value of PANEL_WINDOW_AGENT, beside packages that serve and don't.
#
#   choice-of-window-agent.sh SOURCE CMAKE ARGUMENT...
set -euo pipefail

source=$1
cmake=$2
shift 2
arguments=("$@" -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=Debug)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# make_package NAME: a package of the headers of our own agent, each component with its own folder.
make_package() {
    local package=$work/$1/lib/cmake/QWindowKit
    mkdir -p "$package" "$work/$1/Core" "$work/$1/Widgets"
    cp -r "$source/windowkit/QWKCore" "$work/$1/Core"
    cp -r "$source/windowkit/QWKWidgets" "$work/$1/Widgets"
    cat >"$package/QWindowKitConfig.cmake" <<-CONFIGURATION
		message(STATUS "The package was read")
		foreach(component IN ITEMS Core Widgets)
		    add_library(QWindowKit::\${component} INTERFACE IMPORTED)
		    target_include_directories(QWindowKit::\${component} INTERFACE
		        "$work/$1/\${component}")
		endforeach()
	CONFIGURATION
}

make_package serving
make_package stock
sed -i 's/bool \(inTitleBarDraggableArea\)/void \1/' "$work/stock/Core/QWKCore/windowagentbase.h"
make_package lacking
sed -i 's/ITEMS Core Widgets/ITEMS Core/' \
    "$work/lacking/lib/cmake/QWindowKit/QWindowKitConfig.cmake"

# expect STATUS TEXT PACKAGE ARGUMENT...: configures, and looks for TEXT in what is said. One build
# folder serves all: each decision is taken anew.
expect() {
    local expected=$1 text=$2 package=$3 status=0 output
    shift 3
    output=$("$cmake" -S "$source" -B "$work/build" "${arguments[@]}" -UQWindowKit_DIR \
        -DCMAKE_PREFIX_PATH="$work/$package" -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF "$@" 2>&1) \
        || status=1
    # CMake breaks the lines of a message where it likes.
    output=$(tr -s '[:space:]' ' ' <<<"$output")
    if [ "$status" -ne "$expected" ] || [[ $output != *$text* ]]; then
        printf 'FAILED: %s %s: status %s, expected %s and "%s":\n%s\n' \
            "$package" "$*" "$status" "$expected" "$text" "$output"
        exit 1
    fi
}

# expect_target YES_OR_NO: whether windowkit/ is part of the build.
expect_target() {
    local found=no targets
    targets=$("$cmake" --build "$work/build" --target help)
    [[ $targets != *panel_windowkit_widgets* ]] || found=yes
    [ "$found" = "$1" ] || { echo "FAILED: windowkit/ in the build: $found" && exit 1; }
}

expect 0 'Configuring done' serving
! grep '^QWindowKit_DIR' "$work/build/CMakeCache.txt" \
    || { echo 'FAILED: the default looked for a package' && exit 1; }
expect_target yes
expect 0 "the installed QWindowKit in $work/serving/" serving -DPANEL_WINDOW_AGENT=system
expect_target no
for package in nowhere lacking; do
    expect 1 'no installed QWindowKit with the components Core and Widgets' $package
done
expect 1 "the QWindowKit in $work/stock/lib/cmake/QWindowKit doesn't declare the signal" stock
expect 0 'Configuring done' stock -DPANEL_WINDOW_AGENT=bundled
expect_target yes
expect 1 'PANEL_WINDOW_AGENT is "auto". It takes bundled or system' serving -DPANEL_WINDOW_AGENT=auto
