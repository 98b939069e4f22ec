#!/usr/bin/env bash
# Configures and builds CMake presets: build.sh PRESET... [-- OPTION...]
# Options after "--" go to the configuration of each of them.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=()
while [[ $# -gt 0 && $1 != -- ]]; do
    presets+=("$1")
    shift
done
[[ $# -eq 0 ]] || shift

# Configuring is one process waiting for small compilations: all presets at once. Building fills
# the machine by itself.
mkdir -p build
jobs=()
for preset in "${presets[@]}"; do
    cmake --preset "$preset" "$@" >"build/configure-$preset.log" 2>&1 &
    jobs+=("$preset:$!")
done
for job in "${jobs[@]}"; do
    wait "${job#*:}" || { cat "build/configure-${job%:*}.log" >&2; exit 1; }
done
for preset in "${presets[@]}"; do
    echo "Building $preset"
    cmake --build --preset "$preset" --parallel "$(nproc)" >"build/build-$preset.log" 2>&1 ||
        { grep -E -A 12 'error|FAILED' "build/build-$preset.log" >&2; exit 1; }
done
