#!/usr/bin/env bash
# Builds Orvane optimised and measures it on a desktop of its own under Xvfb, side by side with
# minimal programs on the same key: key press to overlay painted at 6, 30 and 150 windows, Tab to
# repaint, release to the chosen window active, memory over 1,000 gestures, and idle CPU over 30
# seconds. Takes about eight minutes; run it on an otherwise quiet machine.
#   bash scripts/bench-desktop.sh [TRIALS] [launcher | 6 | 30 | 150]   (only that part)
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane_desktop_benchmark
build/release/bench/orvane_desktop_benchmark "${1:-20}" "${@:2}"
