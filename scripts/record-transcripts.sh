#!/usr/bin/env bash
# Records the transcript of every shipped example and suite scenario after a deliberate change of
# behaviour; review the diff before committing it.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release --target orvane-simulator
for scenario in examples/*.scenario tests/apps/scenarios/*.scenario; do
    name=$(basename "$scenario" .scenario)
    ./build/release/apps/orvane-simulator "$scenario" |
        sed "1s|.*|orvane simulator transcript: $name.scenario|" \
            >"tests/apps/scenarios/$name.transcript"
done
