#!/usr/bin/env bash
# Tests that take too long for every run, on a build of the preset native: nightly.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh native
PGKIT_KILLS=${PGKIT_KILLS:-100} build/native/bin/pgkit_tests --gtest_filter='KilledWrites.*'
