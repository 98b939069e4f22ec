#!/usr/bin/env bash
# Static analysis of the module, the imaging module and the tool; silent when nothing is found.
# Needs clang-tidy and cppcheck, and a native build for its compile commands.
set -euo pipefail
cd "$(dirname "$0")/.."

for tool in run-clang-tidy cppcheck; do
    command -v "$tool" >/dev/null || { echo "lint.sh: $tool is not installed" >&2; exit 127; }
done
cmake --preset native >/dev/null
# clang knows all options of the build but one.
mkdir -p build/lint
sed 's/ -fno-lifetime-dse//g' build/native/compile_commands.json >build/lint/compile_commands.json
run-clang-tidy -quiet -p build/lint "^$PWD/(src|imaging|tools|examples)/.*\.cpp" 2>/dev/null |
    { ! grep -E '(warning|error):'; }

# What cppcheck 2.10 takes for errors: arrays that a call fills, casts to scoped enumerations, and
# an initialisation by a lambda.
cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ -I include -I src \
    --enable=warning,performance,portability \
    --suppress=internalAstError --suppress=cppcheckError --suppress=syntaxError \
    --suppress=uninitMemberVar --suppress=uninitvar --suppress=legacyUninitvar \
    --suppress=CastIntegerToAddressAtReturn \
    src imaging tools
