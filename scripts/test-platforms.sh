#!/usr/bin/env bash
# Builds for the platforms that are not in every run and runs the tests there: Linux on arm64 and
# s390x (big endian) under qemu, clang natively, and the Windows build for the old C runtime, by one
# smoke test. The last line is "N passed, M failed".
#
#   test-platforms.sh [PRESET...]    linux-arm64, linux-s390x, native-clang, windows-x64-msvcrt
set -euo pipefail
cd "$(dirname "$0")/.."
results=$PWD/build/results
presets=("$@")
[[ $# -gt 0 ]] || presets=(linux-arm64 linux-s390x native-clang windows-x64-msvcrt)
passed=0
failed=0

# count NAME PASSED FAILED
count() {
    echo "$1: $2 passed, $3 failed"
    passed=$((passed + $2))
    failed=$((failed + $3))
}

# check NAME COMMAND...: a command that is one check.
check() {
    local name=$1
    shift
    if "$@"; then count "$name" 1 0; else count "$name" 0 1; fi
}

# run_gtest PRESET PROGRAM LAUNCHER...: what a program leaves without a report counts as a failure.
run_gtest() {
    local name=$1-$2 program=build/$1/bin/$2 status=0 ran=0 bad=1
    shift 2
    timeout --kill-after=10 3600 "$@" "$program" --gtest_brief=1 \
        "--gtest_filter=$filter" "--gtest_output=xml:$results/$name.xml" \
        >"$results/$name.log" 2>&1 </dev/null || status=$?
    if [[ -s $results/$name.xml ]]; then
        ran=$(grep -c '<testcase .*result="completed"' "$results/$name.xml" || true)
        bad=$(sed -n 's/^<testsuites .* failures="\([0-9]*\)".*/\1/p' "$results/$name.xml")
        [[ $bad -gt 0 || $status -eq 0 ]] || bad=1
    fi
    count "$name" $((ran > bad ? ran - bad : 0)) "$bad"
    [[ $bad -eq 0 ]] || tail -n 40 "$results/$name.log"
}

# Left to the native run: what takes minutes under an emulator, a host that is short of memory, which would
# be the emulator's, and programs of this machine's that start those of the other processor.
notEmulated='-HostileMedia.DicomdirsAreNumbered*:HostileNesting.*:ManyRecords.*:EveryFunction.*'
notEmulated+=':PgtoolDisc.LeavesNothingThatLooksFinishedWhenItIsKilled:PgtoolDisc.LeavesNothingWhenThereIsNoRoom'
notEmulated+=':PgtoolDiscMedia.SaysBeforeItCopiesThatNoProgramMakesImages:PgtoolDiscMedia.HasImagesMadeByAnotherProgram'

smoke_old_runtime() {
    local bin=build/windows-x64-msvcrt/bin image=tests/data/native/mr_implicit_le.dcm imports
    imports=$(x86_64-w64-mingw32-objdump -p "$bin/pgkit.dll" | sed -n 's/.*DLL Name: //p')
    grep -qix msvcrt.dll <<<"$imports" || return 1
    ! grep -qi '^api-ms-win-crt' <<<"$imports" || return 1
    cmake --preset native >/dev/null && cmake --build --preset native --target pgtool >/dev/null
    cmp <(scripts/wine.sh "$bin/pgtool.exe" dump "$image") <(build/native/bin/pgtool dump "$image")
}

mkdir -p "$results"
scripts/install-packages.sh
scripts/install-packages.sh platforms
for preset in "${presets[@]}"; do
    launcher=()
    filter='*'
    case $preset in
        linux-arm64) triplet=aarch64-linux-gnu ;;
        linux-s390x) triplet=s390x-linux-gnu ;;
        *) triplet= ;;
    esac
    if [[ -n $triplet ]]; then
        scripts/fetch-cross-libraries.sh "$triplet"
        launcher=(scripts/run-emulated.sh "$triplet")
        filter=$notEmulated
    fi
    scripts/build.sh "$preset"
    if [[ $preset == windows-x64-msvcrt ]]; then
        check "$preset" smoke_old_runtime
        continue
    fi
    for program in pgkit_tests pgkit_unit_tests pgkit_imaging_tests; do
        run_gtest "$preset" "$program" ${launcher[@]+"${launcher[@]}"}
    done
    [[ -n $triplet ]] || continue
    cmake --preset native >/dev/null && cmake --build --preset native --target pgtool >/dev/null
    check "$preset-pgtool" tests/interop/compare_platforms.py build/native/bin/pgtool \
        "${launcher[@]}" "build/$preset/bin/pgtool"
done
echo "$passed passed, $failed failed"
[[ $failed -eq 0 && $passed -gt 0 ]]
