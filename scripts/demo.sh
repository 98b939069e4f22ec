#!/usr/bin/env bash
# Builds pgkit for Linux and for Windows and dumps one real file with each of them.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh
scripts/build.sh native windows-x64 -- -DPGKIT_BUILD_TESTS=OFF -DPGKIT_BUILD_EXAMPLES=OFF

file=${1:-tests/data/native/mr_implicit_le.dcm}
echo "== Linux: pgtool and libpgkit.so: $file"
build/native/bin/pgtool dump "$file"
echo "== Windows, under Wine: pgtool.exe and pgkit.dll: $file"
scripts/wine.sh build/windows-x64/bin/pgtool.exe dump "$file"
