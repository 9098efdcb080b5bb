#!/usr/bin/env bash
# Builds Orvane optimised and measures it on a headless sway of its own, side by side with a
# minimal layer-shell program on the same binding: binding to overlay on screen and Tab to repaint
# at 6 and 30 windows, and idle CPU over 30 seconds. Takes about three minutes; run it on an
# otherwise quiet machine.
#   bash scripts/bench-wayland.sh [TRIALS]
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
# sway refuses to run as root: as root, it runs as this unprivileged user.
if [ "$(id -u)" -eq 0 ] && ! id orvane-sway >/dev/null 2>&1; then
    useradd --system --no-create-home --shell /usr/sbin/nologin orvane-sway
fi
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane_wayland_benchmark
build/release/bench/orvane_wayland_benchmark "${1:-20}"
