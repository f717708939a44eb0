# The Debian packages that the panel needs, for the scripts beside this one and .ci/run. To be
# sourced. bash, grep and an awk are essential on Debian and not listed.
# shellcheck shell=bash disable=SC2034

build_packages=(cmake g++ libxcb-randr0-dev libxcb1-dev ninja-build qtbase5-dev)

# To run it: the SVG plug-in (the ICO plug-in and the X11 platform come with Qt itself), the process
# tools, the desktop's opener, and a font with Chinese glyphs.
run_packages=(libqt5svg5 procps xdg-utils fonts-noto-cjk)

# To run it without a display: a private X server with a window manager, and a screenshot.
display_packages=(xvfb openbox xdotool x11-utils imagemagick)

# To test it: themes, window managers, and the tools that ask the X server and D-Bus.
test_packages=(
    adwaita-qt qt5-gtk-platformtheme qt5ct
    metacity xfconf xfwm4
    libxcb-xfixes0-dev pkg-config wmctrl x11-xserver-utils xserver-xephyr
    at-spi2-core dbus python3 python3-pyatspi
    file icoutils librsvg2-bin
)

# To hold it to its standards: formatter, linters, sanitizers' second compiler.
check_packages=(clang clang-format clang-tidy clazy git pre-commit shellcheck)

# To measure it.
bench_packages=(dbus hyperfine libx11-dev)

# The programs that these packages bring, to look for where there is no apt-get.
declare -A tools_of=(
    [cmake]=cmake [g++]=c++ [ninja-build]=ninja [pkg-config]=pkg-config [git]=git
    [procps]='pgrep ps' [xdg-utils]=xdg-open
    [xvfb]=Xvfb [openbox]=openbox [xdotool]=xdotool [x11-utils]='xprop xev' [imagemagick]='convert import'
    [metacity]=metacity [xfwm4]=xfwm4 [wmctrl]=wmctrl [x11-xserver-utils]=xrandr
    [xserver-xephyr]=Xephyr [dbus]=dbus-daemon [python3]=python3
)
