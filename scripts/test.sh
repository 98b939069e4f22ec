#!/usr/bin/env bash
# Builds and runs the tests: test.sh [--quick | --platforms]
#
# Without an option everything: natively, with sanitizers and, for Windows, under Wine, and those with
# threads with the thread sanitizer; then the comparison with independent readers, the static analysis
# and more (docs/testing.md). With --quick what the native build shows by itself: the run for work.
# With --platforms, which is no part of the complete run, other processors, compilers and runtimes.
#
# Lines with the time tell where it is; the last line sums all runs up: "N passed, M failed". The
# processor time of each part is in build/results/seconds.txt. When PGKIT_SAMPLES names a directory of
# DICOM files they are read too.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
results=$root/build/results
passed=0
failed=0

quick=false
case ${1:-} in
    --quick) quick=true ;;
    --platforms) exec scripts/test-platforms.sh ;;
    '') ;;
    *) echo "test.sh [--quick | --platforms]" >&2; exit 2 ;;
esac

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

# progress TEXT: tells, with the minutes and seconds since the start, what happens.
progress() {
    printf '[%2d:%02d] %s\n' $((SECONDS / 60)) $((SECONDS % 60)) "$1"
}

# run NAME COMMAND...: runs a command, for $limit seconds at most; its output, exit status and
# processor time are kept.
run() {
    local name=$1 status=0 user system
    shift
    TIMEFORMAT='%U %S'
    { time timeout --kill-after=10 "${limit:-900}" "$@" \
        >"$results/$name.log" 2>&1 </dev/null; } 2>"$results/$name.time" || status=$?
    echo "$status" >"$results/$name.status"
    read -r user system < <(tail -n 1 "$results/$name.time")
    awk -v spent="$user" -v inside="$system" -v name="$name" \
        'BEGIN { printf "%7.1f %s\n", spent + inside, name }' >>"$results/seconds.txt"
    progress "$name ended"
    return "$status"
}

# start NAME COMMAND...: the same in the background, when no more run than there are processors: one
# more than those, because a program under Wine waits for its server all the time.
start() {
    while [[ $(jobs -rp | wc -l) -gt $(nproc) ]]; do
        wait -n || true
    done
    run "$@" &
}

# start_gtest NAME LAUNCHER... PROGRAM: starts a GoogleTest program that reports its cases as XML.
start_gtest() {
    start "$@" "--gtest_output=xml:build/results/$1.xml" --gtest_brief=1
}

# status_of NAME: the exit status of a command that was run.
status_of() {
    cat "$results/$1.status" 2>/dev/null || echo 127
}

# count_gtest NAME: a program that ends without a report, without cases, or with an exit status that
# its cases do not explain is a failure of its own.
count_gtest() {
    local xml=$results/$1.xml status ran=0 bad=0
    status=$(status_of "$1")
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
    if [[ $(status_of "$1") -eq 0 ]]; then count "$1" 1 0; else count "$1" 0 1; fi
}

# start_programs PRESET LAUNCHER...: starts the three test programs of a build.
# The caller's $suffix is that of its programs.
programs=(pgkit_tests pgkit_unit_tests pgkit_imaging_tests)
start_programs() {
    local preset=$1 program
    shift
    for program in "${programs[@]}"; do
        start_gtest "$preset-$program" "$@" "build/$preset/bin/$program$suffix"
    done
}

# Compiling by folder costs a fraction, but all of it again after a change: with a compiler cache the
# files are compiled one by one, unless the preset wants it otherwise.
by_folder=()
[[ -n ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] || by_folder=(-- -DPGKIT_UNITY=ON)

# build PRESET: nothing else runs beside it, because it fills the machine by itself.
build() {
    limit=3600 run "build-$1" scripts/build.sh "$1" "${by_folder[@]}" || { count "build-$1" 0 1; finish; }
}

# What a native build shows by itself. The stack is the one that a thread of a Windows host typically
# has: deep trees must not need more.
native_tests() {
    local suffix=
    start python bindings/python/run_tests.sh build/native/bin/libpgkit.so
    start_programs native prlimit --stack=1048576
    start tool tests/tools/check_matrix.py build/native/bin/pgtool
    start debugger tests/debugger/check_printer.py build/native/bin
    start documents scripts/check-docs.py build/native/bin
    start format scripts/check-format.sh
    start firewall tests/exports/check_firewall.py
}

windows_tests() {
    local suffix=.exe
    start_programs windows-x64 scripts/wine.sh
    start msabi tests/msabi/run_host.sh build/windows-x64
}

sanitizer_tests() {
    local suffix=
    start_programs native-sanitize env
    start_gtest native-tsan-pgkit_thread_tests build/native-tsan/bin/pgkit_thread_tests
}

# What takes more than one of the builds, or other readers and writers.
comparisons() {
    local name wine=$root/scripts/wine.sh
    local native=$root/build/native/bin windows=$root/build/windows-x64/bin
    start written tests/interop/compare_written.py "$native/pgtool"
    start compilers tests/compilers/check_compilers.py build/native build/windows-x64 "$wine"
    start discs tests/interop/judge_discs.py "$native/pgtool" "$wine" "$windows/pgtool.exe"
    start installation tests/consumer/check_installation.py build/native build/windows-x64 "$wine"
    start icons tests/interop/compare_icons.py "$native/creation_probe" "$wine" \
        "$windows/creation_probe.exe"
    for name in compare_readers:interop compare_directories:directories; do
        start "${name#*:}" "tests/interop/${name%:*}.py" "$native/pgtool" \
            "$root/build/native-sanitize/bin/pgtool" "$wine" "$windows/pgtool.exe"
    done
    start media tests/interop/recreate_media.py "$native/pgtool" "$wine" "$windows/pgtool.exe"
    start exports tests/exports/compare_exports.py "$native/libpgkit.so" "$windows/pgkit.dll"
    start hardening tests/hardening/check_hardening.py \
        "$native"/{libpgkit.so,pgview32.so,pgtool} "$windows"/{pgkit.dll,pgview32.dll,pgtool.exe}
    start json tests/interop/compare_json.py "$native/libpgkit.so"
    start text tests/interop/compare_text.py "$native/libpgkit.so"
    start frames tests/interop/compare_frames.py "$native/libpgkit.so"
    start neighbours tests/interop/hostile_neighbours.py "$native/pgtool"
    start verdicts tests/interop/compare_media.py "$native/pgtool"
    start kinds tests/interop/compare_record_kinds.py "$native/pgtool"
}

progress "installing what is missing"
scripts/install-packages.sh test || give_up "installing packages"
rm -rf "$results"
mkdir -p "$results"

# The tests write many thousands of small files, and have some of them put on the disk, which costs
# minutes: where there is room for them they stand in memory.
if [[ $(df --output=avail --block-size=1G /dev/shm 2>/dev/null | tail -n 1) -ge 4 ]]; then
    TMPDIR=$(mktemp -d -p /dev/shm pgkit-test-XXXXXX)
    chmod 755 "$TMPDIR"  # some tests run a program as a user who may do little
    export TMPDIR
    trap 'rm -rf "$TMPDIR"' EXIT
fi

# An exit status of its own tells a sanitizer's report from a failed test. Some tests have two copies of the
# module in one process.
export ASAN_OPTIONS=exitcode=99:detect_leaks=1:detect_odr_violation=0 UBSAN_OPTIONS=exitcode=99:print_stacktrace=1
export TSAN_OPTIONS=exitcode=99

presets=(native)
$quick || presets+=(windows-x64 native-sanitize native-tsan)
progress "building; the logs are in build/results"
for preset in "${presets[@]}"; do
    build "$preset"
done
progress "testing"
if ! $quick; then
    start lint scripts/lint.sh
    windows_tests
    sanitizer_tests
    comparisons
fi
native_tests
wait
for preset in "${presets[@]}"; do
    [[ $preset != native-tsan ]] || continue
    for program in "${programs[@]}"; do
        count_gtest "$preset-$program"
    done
done
count_status format
for name in python tool debugger documents firewall; do
    count_summary "$name"
done
if ! $quick; then
    count_gtest native-tsan-pgkit_thread_tests
    count_status lint
    for name in exports msabi compilers hardening interop frames json neighbours text written media \
        verdicts discs kinds icons installation directories; do
        count_summary "$name"
    done
fi
sort -rn -o "$results/seconds.txt" "$results/seconds.txt"
finish
