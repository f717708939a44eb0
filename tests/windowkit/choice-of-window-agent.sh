#!/usr/bin/env bash
# Sees PANEL_WINDOW_AGENT decide, with no package, with one that declares the signal and with ones
# that don't. Most rows configure a project that holds nothing but the module and windowkit/; the
# last ones configure the whole tree.
#
#   choice-of-window-agent.sh SOURCE CMAKE GENERATOR COMPILER QT5_DIR
set -euo pipefail

source=$1
cmake=$2
generator=$3
compiler=$4
qt5_dir=$5

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# make_package NAME DECLARATION [COMPONENT...]: a package whose agent's base class has DECLARATION.
# Each component has include folders of its own, and none names the other.
make_package() {
    local prefix=$work/$1 declaration=$2
    shift 2
    mkdir -p "$prefix"/Core/QWKCore "$prefix"/Widgets/QWKWidgets "$prefix"/lib/cmake/QWindowKit
    cat >"$prefix/Core/QWKCore/windowagentbase.h" <<-HEADER
		#pragma once
		#include <QObject>
		#include <QPoint>
		namespace QWK {
		class WindowAgentBase : public QObject
		{
		    Q_OBJECT
		public:
		    explicit WindowAgentBase(QObject *parent = nullptr);
		signals:
		    $declaration
		};
		}
	HEADER
    cat >"$prefix/Widgets/QWKWidgets/widgetwindowagent.h" <<-HEADER
		#pragma once
		#include <QWKCore/windowagentbase.h>
		class QWidget;
		namespace QWK {
		class WidgetWindowAgent : public WindowAgentBase
		{
		    Q_OBJECT
		public:
		    explicit WidgetWindowAgent(QObject *parent = nullptr);
		    bool setup(QWidget *window);
		};
		}
	HEADER
    {
        echo 'message(STATUS "The package was read")'
        local component
        for component in "$@"; do
            echo "add_library(QWindowKit::$component INTERFACE IMPORTED)"
            echo "set_target_properties(QWindowKit::$component PROPERTIES"
            echo "    INTERFACE_INCLUDE_DIRECTORIES \"$prefix/$component\")"
        done
    } >"$prefix/lib/cmake/QWindowKit/QWindowKitConfig.cmake"
}

# configuration NAME: replaces the configuration of the package NAME by what comes in.
configuration() {
    cat >"$work/$1/lib/cmake/QWindowKit/QWindowKitConfig.cmake"
}

make_package with 'bool inTitleBarDraggableArea(const QPoint &pos);' Core Widgets
make_package without 'void titleBarChanged();' Core Widgets
make_package void 'void inTitleBarDraggableArea(const QPoint &pos);' Core Widgets
make_package core-only 'bool inTitleBarDraggableArea(const QPoint &pos);' Core
make_package no-header 'bool inTitleBarDraggableArea(const QPoint &pos);' Core Widgets
rm "$work/no-header/Widgets/QWKWidgets/widgetwindowagent.h"

make_package alias 'bool inTitleBarDraggableArea(const QPoint &pos);'
configuration alias <<'CONFIGURATION'
foreach(component IN ITEMS Core Widgets)
    add_library(own_${component} INTERFACE)
    target_include_directories(own_${component} INTERFACE
        "${CMAKE_CURRENT_LIST_DIR}/../../../${component}")
    add_library(QWindowKit::${component} ALIAS own_${component})
endforeach()
CONFIGURATION

# Its targets are everywhere, as those of a package that is built along are.
make_package global 'void titleBarChanged();'
configuration global <<'CONFIGURATION'
foreach(component IN ITEMS Core Widgets)
    add_library(QWindowKit::${component} INTERFACE IMPORTED GLOBAL)
    target_include_directories(QWindowKit::${component} INTERFACE
        "${CMAKE_CURRENT_LIST_DIR}/../../../${component}")
endforeach()
CONFIGURATION

make_package broken 'bool inTitleBarDraggableArea(const QPoint &pos);'
configuration broken <<'CONFIGURATION'
message(FATAL_ERROR "This package is beyond repair")
CONFIGURATION

# The module's surroundings in the panel's own tree, and a line that tells whose target came out.
mkdir "$work/project"
cat >"$work/project/CMakeLists.txt" <<PROJECT
cmake_minimum_required(VERSION 3.16)
project(choice LANGUAGES CXX)
list(APPEND CMAKE_MODULE_PATH "$source/cmake")
find_package(Qt5 REQUIRED COMPONENTS Core Gui Widgets)
include(PanelOptions)
include(PanelRoom)
include(PanelWindowAgent)
get_target_property(imported QWindowKit::Widgets IMPORTED)
get_target_property(imported_core QWindowKit::Core IMPORTED)
message(STATUS "imported: \${imported} \${imported_core}")
PROJECT

configure() {
    local project=$1 build=$2 package=$3
    shift 3
    "$cmake" -S "$project" -B "$build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" \
        -DQt5_DIR="$qt5_dir" -DCMAKE_PREFIX_PATH="$work/$package" \
        -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF \
        -DBUILD_TESTING=OFF "$@" 2>&1
}

# has OUTPUT TEXT: whether TEXT stands in it, wherever the lines of a message are broken.
has() {
    local text
    text=$(tr -s '[:space:]' ' ' <<<"$1")
    [[ $text == *"$2"* ]]
}

complain() {
    failures=$((failures + 1))
    printf 'FAILED: %s\n%s\n' "$1" "$2"
}

# expect CHOICE PACKAGE OUTCOME [TEXT]: OUTCOME is installed, bundled or error. The build folder is
# the same for all, so that every row also shows that the decision is taken anew.
expect() {
    local choice=$1 package=$2 outcome=$3 text=${4:-} output status=0 row="$1 with package $2: $3"
    output=$(configure "$work/project" "$work/build" "$package" -UQWindowKit_DIR \
        ${choice:+"-DPANEL_WINDOW_AGENT=$choice"}) || status=$?

    case $outcome in
    installed)
        [ "$status" -eq 0 ] || complain "$row: exit status $status" "$output"
        has "$output" 'imported: TRUE TRUE' || complain "$row: other targets" "$output"
        has "$output" "Window agent: the installed QWindowKit in $work/$package/" \
            || complain "$row: no line says so" "$output"
        ;;
    bundled)
        [ "$status" -eq 0 ] || complain "$row: exit status $status" "$output"
        has "$output" 'imported: FALSE FALSE' || complain "$row: other targets" "$output"
        [ "$(grep -c 'Window agent: building windowkit/, since' <<<"$output")" -eq 1 ] \
            || complain "$row: no one line says so" "$output"
        ;;
    error)
        [ "$status" -ne 0 ] || complain "$row: exit status 0" "$output"
        has "$output" "PANEL_WINDOW_AGENT is \"$choice\"" || complain "$row: no message" "$output"
        ;;
    esac
    has "$output" "$text" || complain "$row: \"$text\" is missing" "$output"
    if [ "$choice" = bundled ] && has "$output" 'The package was read'; then
        complain "$row: looked for a package" "$output"
    fi
}

missing='no QWindowKit with the components Core and Widgets is installed where CMake looks'
no_signal="doesn't declare the signal bool inTitleBarDraggableArea(const QPoint &)"

no_import="doesn't import its targets QWindowKit::Core and QWindowKit::Widgets"
unreadable="the QWindowKit that CMake finds can't be read"

expect '' nowhere bundled "$missing"
expect auto nowhere bundled "$missing"
expect auto with installed
expect auto without bundled "the QWindowKit in $work/without/"
expect auto void bundled "$no_signal"
expect auto core-only bundled "$missing"
expect auto no-header bundled "$no_signal"
expect auto alias bundled "$no_import"
expect auto global bundled "$no_signal"
expect auto broken bundled "$unreadable"
expect system with installed
expect system without error "$no_signal"
expect system void error "$no_signal"
expect system nowhere error "$missing"
expect system core-only error "$missing"
expect system no-header error "$no_signal"
expect system alias error "$no_import"
expect system global error "$no_signal"
expect system broken error "$unreadable"
expect bundled with bundled
expect bundled nowhere bundled
for choice in Auto AUTO autox system,bundled ON; do
    expect "$choice" with error 'It takes auto, system or bundled'
done

# expect_tree CHOICE PACKAGE YES_OR_NO: whether the build of the whole tree has windowkit/ in it.
expect_tree() {
    local output targets status=0 bundled=no row="the whole tree, $1 with package $2"
    output=$(configure "$source" "$work/tree" "$2" -UQWindowKit_DIR "-DPANEL_WINDOW_AGENT=$1") \
        || status=$?
    [ "$status" -eq 0 ] || complain "$row: exit status $status" "$output"
    targets=$("$cmake" --build "$work/tree" --target help)
    has "$targets" 'panel_windowkit_widgets' && bundled=yes
    [ "$bundled" = "$3" ] || complain "$row: windowkit/ in the build: $bundled" "$output"
}

expect_tree system with no
expect_tree auto without yes

# With an installed agent the shell room is compiled, and so is what links the whole panel. The tree
# is part of another one here.
mkdir "$work/parent"
cat >"$work/parent/consumer.cpp" <<'CONSUMER'
#include <QWKCore/windowagentbase.h>
#include <QWKWidgets/widgetwindowagent.h>
#include "shell/ServiceContainer.h"
CONSUMER
cat >"$work/parent/CMakeLists.txt" <<PROJECT
cmake_minimum_required(VERSION 3.16)
project(parent LANGUAGES CXX)
add_subdirectory("$source" panel)
add_library(consumer OBJECT consumer.cpp)
target_link_libraries(consumer PRIVATE panel)
set_target_properties(consumer PROPERTIES POSITION_INDEPENDENT_CODE ON)
PROJECT

output=$(configure "$work/parent" "$work/parent/build" with -DPANEL_WINDOW_AGENT=system \
    -DCMAKE_OPTIMIZE_DEPENDENCIES=ON -DPANEL_LTO=OFF) || complain 'the tree as a part' "$output"
for target in panel_shell consumer; do
    output=$("$cmake" --build "$work/parent/build" --target "$target" 2>&1) \
        || complain "$target with an installed agent" "$output"
done

[ "$failures" -eq 0 ] || exit 1
echo 'Every choice was right.'
