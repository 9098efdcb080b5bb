#!/usr/bin/env bash
# Installs the Debian packages Orvane builds with, when any is missing.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    libicu-dev nlohmann-json3-dev
    libgtest-dev libgmock-dev googletest libbenchmark-dev
    clang-format clang libclang-rt-14-dev
    qt6-base-dev libxcb1-dev libxcb-ewmh-dev libxcb-icccm4-dev libxcb-keysyms1-dev
    libxcb-xinput-dev libxcb-randr0-dev libxcb-res0-dev libxcb-xkb-dev libxcb-xtest0-dev
    libxcb-composite0-dev libxcb-render0-dev libxcb-shm0-dev libxcb-damage0-dev libxcb-xfixes0-dev
    libxkbcommon-dev
    libxkbcommon-x11-dev libglib2.0-dev libqt6svg6
    libwayland-dev libwayland-bin wayland-protocols qt6-wayland libpixman-1-dev
    fonts-dejavu-core
    dpkg-dev xvfb xauth openbox trayer xterm x11-utils xdotool imagemagick xcompmgr
    sway wtype grim foot wayland-utils dbus-daemon
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi
"${as_root[@]}" apt-get update
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
