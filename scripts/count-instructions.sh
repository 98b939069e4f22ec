#!/usr/bin/env bash
# Counts the instructions of a few jobs: numbers that do not depend on how busy the machine is. Each
# is the difference of two runs, so that starting the program does not count.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh bench
scripts/build.sh native -- -DPGKIT_BUILD_BENCH=ON
program=build/native/bin/pgkit_instructions

directory=$(mktemp -d)
trap 'rm -r "$directory"' EXIT

# JOB TIMES: all instructions of a run.
count() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" 2>&1 >/dev/null |
        sed -n 's/.*Collected : //p'
}

printf '| %s | %s |\n' 'job' 'instructions' '---' '---:'
for job in $("$program"); do
    once=$(count "$job" 1)
    twice=$(count "$job" 2)
    printf '| %s | %d |\n' "$job" $((twice - once))
done
