#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: a normal build, and one under
# AddressSanitizer and UndefinedBehaviorSanitizer, then runs each fuzz target for a short while on
# its kept corpus. Also checks the formatting.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-dependencies.sh
jobs="$(nproc)"

echo "== Formatting"
git ls-files -- 'src/*.h' 'src/*.cpp' 'tests/*.h' 'tests/*.cpp' 'apps/*.h' 'apps/*.cpp' \
    'bench/*.h' 'bench/*.cpp' | xargs -r clang-format --dry-run --Werror

# sway refuses to run as root: as root, the Wayland tests run it as this unprivileged user.
if [ "$(id -u)" -eq 0 ] && ! id orvane-sway >/dev/null 2>&1; then
    useradd --system --no-create-home --shell /usr/sbin/nologin orvane-sway
fi

echo "== Normal build"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$jobs"
ctest --test-dir build/release --output-on-failure -j "$jobs"

echo "== AddressSanitizer and UndefinedBehaviorSanitizer build"
cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORVANE_SANITIZE=ON >/dev/null
cmake --build build/sanitize -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

echo "== Fuzzing, ${SECONDS_PER_TARGET:-25} s a target"
bash scripts/fuzz.sh
