#!/usr/bin/env bash
# Builds the benchmarks optimised and runs them, reporting medians of five repetitions.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane_benchmarks
build/release/bench/orvane_benchmarks --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true "$@"
