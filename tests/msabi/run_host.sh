#!/usr/bin/env bash
# Builds a host of the Windows module with a compiler of Microsoft's ABI and runs it under Wine:
# run_host.sh BUILD_DIRECTORY, that of the Windows build. The import library is made from the
# module-definition file alone. The last line of the output is "N passed, M failed".
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$(cd "$1" && pwd)
work=$build/tests/msabi

rm -rf "$work"
mkdir -p "$work/run"
cd "$work"
for definitions in "$root/src/pgkit.def" "$here/msvcrt.def" "$here/kernel32.def"; do
    llvm-dlltool -m i386:x86-64 -d "$definitions" -l "$(basename "$definitions" .def).lib"
done
# Neither the compiler's own library nor headers of a C library are there: freestanding.
clang++ --target=x86_64-pc-windows-msvc -std=c++17 -O2 -Wall -Wextra -Werror \
    -ffreestanding -fno-exceptions -fno-rtti -fno-threadsafe-statics -mno-stack-arg-probe \
    -nostdinc -isystem "$here/include" -isystem "$(clang++ -print-resource-dir)/include" \
    -I "$root/include" -I "$here" -c "$here/host.cpp" -o host.obj
lld-link -nodefaultlib -entry:Start -subsystem:console -out:run/host.exe \
    host.obj pgkit.lib msvcrt.lib kernel32.lib

cp "$build/bin/pgkit.dll" run/
cd run
"$root/scripts/wine.sh" ./host.exe | tr -d '\r'
