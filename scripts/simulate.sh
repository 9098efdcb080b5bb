#!/usr/bin/env bash
# Installs what is missing, builds the simulator and plays a scenario on the simulated desktop
# (the shipped first-start story unless another file is given).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane-simulator
build/release/apps/orvane-simulator "${@:-examples/first-start.scenario}"
