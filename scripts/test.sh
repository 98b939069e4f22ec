#!/usr/bin/env bash
# Builds everything and runs every test: natively, with sanitizers and, for Windows, under Wine, and
# those with threads with the thread sanitizer; then the comparison with independent readers. The
# last line sums all of them up: "N passed, M failed". When PGKIT_SAMPLES names a directory of DICOM
# files they are read too.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
results=$root/build/results
passed=0
failed=0

finish() {
    echo "$passed passed, $failed failed"
    [[ $failed -eq 0 && $passed -gt 0 ]] || exit 1
    exit 0
}

# give_up WHAT: nothing more can be run.
give_up() {
    echo "$1 FAILED"
    failed=$((failed + 1))
    finish
}

# count NAME PASSED FAILED: adds a run to the sum; what failed is shown with the run's output.
count() {
    echo "$1: $2 passed, $3 failed"
    passed=$((passed + $2))
    failed=$((failed + $3))
    [[ $3 -eq 0 ]] && return
    grep --max-count=50 --after-context=10 '^FAILED' "$results/$1.log" || tail -n 200 "$results/$1.log"
}

# start NAME COMMAND...: runs a command in the background; its output and exit status are kept.
start() {
    local name=$1
    shift
    (
        status=0
        timeout --kill-after=10 400 "$@" >"$results/$name.log" 2>&1 </dev/null || status=$?
        echo "$status" >"$results/$name.status"
    ) &
}

# start_gtest NAME LAUNCHER... PROGRAM: starts a GoogleTest program that reports its cases as XML.
start_gtest() {
    start "$@" "--gtest_output=xml:build/results/$1.xml" --gtest_brief=1
}

# count_gtest NAME: a program that ends without a report, without cases, or with an exit status that
# its cases do not explain is a failure of its own.
count_gtest() {
    local xml=$results/$1.xml status ran=0 bad=0
    status=$(cat "$results/$1.status")
    if [[ -s $xml ]]; then
        ran=$(grep -c '<testcase .*result="completed"' "$xml" || true)
        bad=$(sed -n 's/^<testsuites .* failures="\([0-9]*\)".*/\1/p' "$xml")
    fi
    if [[ $bad -eq 0 && ($status -ne 0 || $ran -eq 0) ]]; then
        echo "exit status $status after $ran cases" >>"$results/$1.log"
        ran=$((ran + 1))
        bad=1
    fi
    count "$1" $((ran - bad)) "$bad"
}

# count_summary NAME: a command whose last line is "N passed, M failed".
count_summary() {
    local summary
    summary=$(tail -n 1 "$results/$1.log")
    if [[ $summary =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
        count "$1" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}"
    else
        count "$1" 0 1
    fi
}

# count_status NAME: a command that is one check.
count_status() {
    if [[ $(cat "$results/$1.status") -eq 0 ]]; then count "$1" 1 0; else count "$1" 0 1; fi
}

scripts/install-packages.sh test || give_up "installing packages"
scripts/build.sh native native-sanitize native-tsan windows-x64 || give_up "building"
rm -rf "$results"
mkdir -p "$results"

# An exit status of its own tells a sanitizer's report from a failed test.
export ASAN_OPTIONS=exitcode=99:detect_leaks=1 UBSAN_OPTIONS=exitcode=99:print_stacktrace=1
export TSAN_OPTIONS=exitcode=99

programs=(pgkit_tests pgkit_unit_tests pgkit_imaging_tests)
for program in "${programs[@]}"; do
    # The stack that a thread of a Windows host typically has: deep trees must not need more.
    start_gtest "native-$program" prlimit --stack=1048576 "build/native/bin/$program"
    start_gtest "native-sanitize-$program" "build/native-sanitize/bin/$program"
    start_gtest "windows-x64-$program" scripts/wine.sh "build/windows-x64/bin/$program.exe"
done
start_gtest native-tsan-pgkit_thread_tests build/native-tsan/bin/pgkit_thread_tests
start format scripts/check-format.sh
start exports tests/exports/compare_exports.py build/native/bin/libpgkit.so \
    build/windows-x64/bin/pgkit.dll
start msabi tests/msabi/run_host.sh build/windows-x64
start hardening tests/hardening/check_hardening.py build/native/bin/{libpgkit.so,pgview32.so,pgtool} \
    build/windows-x64/bin/{pgkit.dll,pgview32.dll,pgtool.exe}
wait

start interop tests/interop/compare_readers.py "$root/build/native/bin/pgtool" \
    "$root/build/native-sanitize/bin/pgtool" "$root/scripts/wine.sh" \
    "$root/build/windows-x64/bin/pgtool.exe"
start written tests/interop/compare_written.py "$root/build/native/bin/pgtool"
start media tests/interop/recreate_media.py "$root/build/native/bin/pgtool" \
    "$root/scripts/wine.sh" "$root/build/windows-x64/bin/pgtool.exe"
wait
start python bindings/python/run_tests.sh build/native/bin/libpgkit.so
start text tests/interop/compare_text.py build/native/bin/libpgkit.so
start debugger tests/debugger/check_printer.py build/native/bin
start documents scripts/check-docs.py build/native/bin
start installation tests/consumer/check_installation.py build/native build/windows-x64 \
    "$root/scripts/wine.sh"
start icons tests/interop/compare_icons.py build/native/bin/creation_probe \
    "$root/scripts/wine.sh" "$root/build/windows-x64/bin/creation_probe.exe"
start directories tests/interop/compare_directories.py "$root/build/native/bin/pgtool" \
    "$root/build/native-sanitize/bin/pgtool" "$root/scripts/wine.sh" \
    "$root/build/windows-x64/bin/pgtool.exe"
wait

for preset in native native-sanitize windows-x64; do
    for program in "${programs[@]}"; do
        count_gtest "$preset-$program"
    done
done
count_gtest native-tsan-pgkit_thread_tests
count_status format
count_summary exports
count_summary msabi
count_summary hardening
count_summary interop
count_summary written
count_summary media
count_summary icons
count_summary installation
count_summary python
count_summary text
count_summary debugger
count_summary documents
count_summary directories
finish
