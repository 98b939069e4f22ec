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
for definitions in "$root/src/pgkit.def" "$here/ucrtbase.def" "$here/kernel32.def"; do
    llvm-dlltool -m i386:x86-64 -d "$definitions" -l "$(basename "$definitions" .def).lib"
done

# build SOURCE... : compiles and links SOURCE.exe, named by the last source. Neither the compiler's
# own library nor headers of a C library are there: freestanding.
build() {
    local source objects=()
    for source in "$@"; do
        objects+=("$(basename "$source" .cpp).obj")
        clang++ --target=x86_64-pc-windows-msvc -std=c++17 -O2 -Wall -Wextra -Werror \
            -ffreestanding -fno-exceptions -fno-rtti -fno-threadsafe-statics -mno-stack-arg-probe \
            -nostdinc -isystem "$here/include" -isystem "$(clang++ -print-resource-dir)/include" \
            -I "$root/include" -I "$here" -c "$source" -o "${objects[-1]}"
    done
    lld-link -nodefaultlib -entry:Start -subsystem:console \
        "-out:run/$(basename "${!#}" .cpp).exe" \
        "${objects[@]}" pgkit.lib ucrtbase.lib kernel32.lib
}
build "$here/host.cpp"
build "$here/start.cpp" "$root/examples/read_with_classes.cpp"

cp "$build/bin/pgkit.dll" run/
cd run
# The program on the classes prints what the same program built by GCC prints natively;
# tests/compilers has those on the layer of headers.
image=$root/tests/data/native/mr_implicit_le.dcm
"$root/scripts/wine.sh" ./read_with_classes.exe "$image" | tr -d '\r' >printed.txt || true
"$root/build/native/bin/read_with_classes" "$image" >expected.txt
passed=1 failed=0
cmp printed.txt expected.txt || { passed=0 failed=1; }

"$root/scripts/wine.sh" ./host.exe | tr -d '\r' >host.txt || true
sed '$d' host.txt
read -r more _ less _ <<<"$(tail -n 1 host.txt)" || true
echo "$((passed + more)) passed, $((failed + less)) failed"
