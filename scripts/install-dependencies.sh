#!/usr/bin/env bash
# Installs the Debian packages Orvane builds with, when any is missing.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    libicu-dev nlohmann-json3-dev
    libgtest-dev libgmock-dev googletest libbenchmark-dev
    clang-format clang libclang-rt-14-dev
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
