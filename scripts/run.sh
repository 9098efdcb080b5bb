#!/usr/bin/env bash
# Installs what is missing, builds Orvane and runs it. In a Wayland session ($WAYLAND_DISPLAY) or on
# an X display ($DISPLAY), Orvane runs on that desktop in the foreground until Ctrl-C. Without
# either, it runs on a demo desktop of its own (Xvfb, Openbox, three xterms), where an Alt-Tab
# gesture is played through XTest; what happened is printed and screenshots of the overlay are
# written to build/demo/.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane_program
program="$root/build/release/apps/orvane"

wayland="${WAYLAND_DISPLAY:-}"
if [ -n "$wayland" ] && { [ -S "$wayland" ] || [ -S "${XDG_RUNTIME_DIR:-}/$wayland" ]; }; then
    exec "$program" "$@"
fi
if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
    exec "$program" "$@"
fi
exec bash scripts/demo.sh "$program"
