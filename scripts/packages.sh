# The Debian packages that the panel needs, for the scripts beside this one and .ci/run. To be
# sourced.
#
# bash, grep and an awk are essential on Debian and not listed.
# shellcheck shell=bash disable=SC2034

# To build the panel.
build_packages=(
    cmake
    g++
    libxcb-randr0-dev
    ninja-build
    qtbase5-dev
)

# To run it: the SVG plug-in (the ICO plug-in and the X11 platform come with Qt itself), the process
# tools, the desktop's opener, and a font with Chinese glyphs.
run_packages=(
    libqt5svg5
    procps
    xdg-utils
    fonts-noto-cjk
)

# To run it without a display: a private X server with a window manager, and a picture of it.
display_packages=(
    xvfb
    openbox
    xdotool
    x11-utils
    imagemagick
)

# To test it.
test_packages=(
    adwaita-qt
    kde-style-breeze
    qt5-gtk-platformtheme
    qt5ct
    libxcb-xfixes0-dev
    pkg-config
    xserver-xephyr
    x11-xserver-utils
    wmctrl
    dbus
    xfconf
    tini
    xfwm4
    metacity
    at-spi2-core
    python3-pyatspi
    file
    icoutils
    librsvg2-bin
)

# To hold it to its standards: formatter, linter, sanitizers' second compiler.
check_packages=(
    clang
    clang-format
    clang-tidy
    clazy
    git
    pre-commit
    shellcheck
)

# To measure it.
bench_packages=(
    hyperfine
    libx11-dev
)

# The programs for which those of them are needed that aren't libraries, fonts or services.
declare -A tools_of=(
    [cmake]=cmake
    [g++]=c++
    [ninja-build]=ninja
    [procps]='pgrep ps'
    [xdg-utils]=xdg-open
    [xvfb]=Xvfb
    [openbox]=openbox
    [xdotool]=xdotool
    [x11-utils]=xprop
    [imagemagick]='convert import'
    [pkg-config]=pkg-config
    [xserver-xephyr]=Xephyr
    [x11-xserver-utils]=xrandr
    [wmctrl]=wmctrl
    [dbus]=dbus-daemon
    [tini]=tini
    [xfwm4]=xfwm4
    [metacity]=metacity
    [git]=git
)
