#!/usr/bin/env bash
# Whether two builds of the same commit, in different directories and at different times, give the
# same packages byte by byte: the Debian packages and the archive for Windows. The last line is
# "N passed, M failed".
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scripts/install-packages.sh packages
work=$(mktemp -d -t pgkit-reproducible-XXXXXX)
trap 'rm -rf "$work"' EXIT
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH

# windows DIRECTORY: the archive for Windows, from a checkout of its own.
windows() {
    mkdir -p "$1/source"
    git archive HEAD | tar --extract --directory "$1/source"
    cmake --preset windows-x64 -S "$1/source" -B "$1/build" \
        -DPGKIT_BUILD_TESTS=OFF -DPGKIT_BUILD_EXAMPLES=OFF >"$1/log" 2>&1
    cmake --build "$1/build" --parallel "$(nproc)" >>"$1/log" 2>&1
    (cd "$1/build" && cpack -B "$1") >>"$1/log" 2>&1
}

for name in first the-second; do
    "$root/scripts/make-debian-packages.sh" "$work/$name/debian" >/dev/null
    windows "$work/$name/windows"
done

passed=0 failed=0
for file in "$work"/first/debian/*.deb "$work"/first/windows/*.zip; do
    if cmp "$file" "${file/first/the-second}"; then
        echo "ok     same      $(basename "$file")"
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[[ $failed -eq 0 && $passed -ge 5 ]]
