#!/usr/bin/env bash
# Fails, with the places, when a C++ file of this project is not formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."

find include src imaging tools tests bench examples fuzz -name '*.h' -o -name '*.hpp' -o -name '*.cpp' |
    xargs clang-format --dry-run --Werror
