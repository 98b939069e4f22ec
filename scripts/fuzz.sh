#!/usr/bin/env bash
# Fuzzes the library with libFuzzer: fuzz.sh [SECONDS [TARGET...]], 60 seconds for each of all targets
# unless told otherwise, several at a time. Prints a table: executions, edges covered, when the last
# new edge was found, and findings. The exit status is 1 when there are findings.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
read -ra all <<<"$(sed -n 's/^  foreach(target \(.*\))$/\1/p' fuzz/CMakeLists.txt)"
targets=("${@:-${all[@]}}")
corpora=$PWD/build/fuzz/corpus
findings=$PWD/build/fuzz/findings

if ! built=$(cmake --preset fuzz && cmake --build --preset fuzz); then
    echo "$built"
    exit 1
fi

# The targets write scratch files all the time: in memory where there is such a place.
scratch=$(mktemp -d -p "$([[ -w /dev/shm ]] && echo /dev/shm || echo "${TMPDIR:-/tmp}")" pgkit-fuzz-XXXXXX)
trap 'rm -rf "$scratch"' EXIT

# fuzz TARGET: what is found is kept, what is printed goes to a log.
fuzz() {
    mkdir -p "$corpora/$1" "$findings/$1" "$scratch/$1"
    find tests/data -type f -size -8k -exec cp -n -t "$corpora/$1" {} +
    TMPDIR=$scratch/$1 "build/fuzz/bin/fuzz_$1" "$corpora/$1" -max_total_time="$seconds" \
        -max_len=6000 -timeout=20 -rss_limit_mb=4000 -malloc_limit_mb=8000 -dict=fuzz/dicom.dict \
        -artifact_prefix="$findings/$1/" -print_final_stats=1 -close_fd_mask=1 -verbosity=1 \
        >/dev/null 2> >(with_seconds >"$findings/$1.log") || true
}

# Puts the seconds since the start in front of every line.
with_seconds() {
    local line start=$SECONDS
    while IFS= read -r line; do printf '%d %s\n' $((SECONDS - start)) "$line"; done
}

for target in "${targets[@]}"; do
    while [[ $(jobs -rp | wc -l) -ge $(nproc) ]]; do wait -n || true; done
    fuzz "$target" &
done
wait

printf '%-20s %12s %8s %10s %9s\n' target executions edges "last new" findings
found=0
for target in "${targets[@]}"; do
    log=$findings/$target.log
    executions=$(sed -n 's/.*stat::number_of_executed_units: *//p' "$log")
    edges=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
    last=$(awk '{ for (i = 1; i < NF; ++i) if ($i == "cov:" && $(i + 1) != cov) { cov = $(i + 1); at = $1 } }
                END { print at " s" }' "$log")
    count=$(find "$findings/$target" -type f | wc -l)
    printf '%-20s %12s %8s %10s %9s\n' "$target" "${executions:-0}" "${edges:-0}" "$last" "$count"
    found=$((found + count))
    [[ -n $executions ]] || { echo "$target did not end by itself: see $log"; found=$((found + 1)); }
done
[[ $found -eq 0 ]]
