#!/usr/bin/env bash
# Builds and runs the benchmarks and prints a table.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh bench
scripts/build.sh native -- -DPGKIT_BUILD_BENCH=ON
cmake --build --preset native --target bench | grep -v '^\['
