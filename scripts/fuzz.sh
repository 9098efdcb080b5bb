#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under ASan and UBSan and runs them on the corpus kept in
# tests/fuzz/corpus. With a target name, runs that one for SECONDS (default 600); with none, runs
# every target for SECONDS (default 25), two at a time. A finding fails the run and leaves the
# crashing input under build/fuzz/findings/.
#   bash scripts/fuzz.sh [TARGET] [SECONDS]
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
CC=clang CXX=clang++ cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DORVANE_FUZZ=ON >/dev/null
cmake --build build/fuzz -j "$(nproc)"

run_one() {
    local target="$1" seconds="$2"
    # New inputs go to a scratch folder: the kept corpus changes only by hand.
    local scratch="build/fuzz/corpus/$target" findings="build/fuzz/findings/$target"
    mkdir -p "$scratch" "$findings"
    if ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        "build/fuzz/tests/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix="$findings/" "$scratch" "tests/fuzz/corpus/$target" \
        >"build/fuzz/$target.log" 2>&1; then
        echo "$target: $(grep -E '^stat::number_of_executed_units' "build/fuzz/$target.log" | awk '{print $2}') runs," \
            "$(grep -oE 'cov: [0-9]+' "build/fuzz/$target.log" | tail -n 1), no finding"
    else
        tail -n 40 "build/fuzz/$target.log"
        echo "$target: FINDING (input under $findings)"
        return 1
    fi
}

if [ $# -ge 1 ]; then
    run_one "$1" "${2:-600}"
    exit
fi
seconds="${SECONDS_PER_TARGET:-25}"
failed=0
targets=$(cd tests/fuzz && ls ./*Fuzzer.cpp | sed 's|^\./||; s|\.cpp$||')
pending=()
for target in $targets; do
    run_one "$target" "$seconds" &
    pending+=($!)
    if [ ${#pending[@]} -ge 2 ]; then
        wait "${pending[0]}" || failed=$((failed + 1))
        pending=("${pending[@]:1}")
    fi
done
for pid in "${pending[@]}"; do
    wait "$pid" || failed=$((failed + 1))
done
total=$(echo "$targets" | wc -w)
echo "fuzz: $((total - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
