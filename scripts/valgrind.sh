#!/usr/bin/env bash
# Runs the native test programs under valgrind's memcheck: valgrind.sh [GTEST_FILTER]
# Without a filter all tests are run but those that are named below. Any error and any block that is
# definitely lost fails the run; reports are in build/results.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v valgrind >/dev/null || { echo "valgrind.sh: valgrind is not installed" >&2; exit 127; }
scripts/build.sh native

left_out=(
    # Hold processor time or peak memory against bounds that memcheck exceeds, or come close to them.
    'HostileFragments.TenMillion*' 'HostileHeaders.OfZeros*' 'HostileLengths.AreKept*'
    'HostileLengths.ThatWrap*' 'HostileMedia.DicomdirsAreNumbered*' 'HostileNesting.OfA*'
    'HostileNumbers.*' 'ManyRecords.*' 'NodeRelease.VeryDeepTrees*'
    # Repeat a job thousands of times.
    'Encodings/EveryPrefix.*' 'HostileSamples.*' 'ModuleReload.ManyTimes*'
    'OutOfMemoryWithMedia.*' 'SOPClassSetFile.EveryPrefix*'
    # Start other programs or processes, which memcheck does not follow.
    'CHost.IsToldThatAFileIsNoImage' 'CHost.WritesAThumbnail' 'ConfigurationFile.*' 'Examples.*'
    'ImagingModule.*' 'KilledWrites.*' 'ModuleLoad.*' 'Pgtool*'
)
filter=${1:-*-$(IFS=:; echo "${left_out[*]}")}

mkdir -p build/results
status=0
for program in pgkit_tests pgkit_unit_tests pgkit_imaging_tests; do
    echo "$program"
    # The operators new of the test program stay: tests let them fail.
    valgrind --quiet --soname-synonyms=somalloc=nouserintercepts \
        --suppressions=scripts/valgrind.supp --leak-check=full --show-leak-kinds=definite \
        --errors-for-leak-kinds=definite --error-exitcode=99 --max-stackframe=4194304 \
        --log-file="build/results/valgrind-$program.log" \
        "build/native/bin/$program" --gtest_brief=1 "--gtest_filter=$filter" | tail -n 3 ||
        status=1
    [[ ! -s build/results/valgrind-$program.log ]] || cat "build/results/valgrind-$program.log"
done
exit $status
