#!/usr/bin/env bash
# Makes the Debian packages and looks at them as a newcomer does: lintian, then the first steps of
# each kind of host in a bare root (debootstrap, as root). The last line is "N passed, M failed".
#
#   test-packages.sh [ROOT]    ROOT: a bare root that is there already
set -euo pipefail
cd "$(dirname "$0")/.."
tests=$PWD/tests/consumer
packages=$PWD/build/debian
passed=0
failed=0

# check NAME COMMAND...
check() {
    local name=$1
    shift
    if "$@" >"$packages/$name.log" 2>&1; then
        echo "ok     package   $name"
        passed=$((passed + 1))
    else
        echo "FAILED package   $name"
        tail -n 20 "$packages/$name.log"
        failed=$((failed + 1))
    fi
}

within() { chroot "$root" env LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1 bash -euc "$1"; }

lint() { lintian --allow-root --fail-on error,warning "$packages"/*.changes; }

scripts/install-packages.sh packages
scripts/make-debian-packages.sh "$packages"
check lintian lint

root=${1:-}
if [[ -z $root ]]; then
    root=$(mktemp -d -t pgkit-root-XXXXXX)
    trap 'rm -rf "$root"' EXIT
    debootstrap --variant=minbase bookworm "$root" >"$packages/debootstrap.log" 2>&1
fi
rm -rf "$root/first"
mkdir -p "$root/first"
cp "$packages"/*.deb "$tests"/{CMakeLists.txt,*.cpp,*.c} "$root/first"
cp tests/data/encapsulated/rtdose_rle_15frames_no_bot.dcm "$root/first/image.dcm"
check installation within 'cd /first && rm -f *dbgsym*.deb && { apt-get update -q || true; } && DEBIAN_FRONTEND=noninteractive \
    apt-get install -qy --no-install-recommends ./*.deb g++ cmake make pkg-config'
check cmake within 'cd /first && cmake -S . -B build && cmake --build build &&
    build/consumer made.dcm | grep "DOE^JANE" && build/imaging_consumer image.dcm | grep "15 frames"'
check pkg-config within 'cd /first && g++ -std=c++17 consumer.cpp -o by_pkg_config \
    $(pkg-config --cflags --libs pgkit) && ./by_pkg_config made.dcm | grep "DOE^JANE"'
check c within 'cd /first && gcc -std=c11 consumer_in_c.c -o in_c $(pkg-config --cflags --libs pgkit) &&
    ./in_c | grep "PixelData OWOB"'
check tool within 'cd /first && pgtool dump image.dcm | grep DATASET'
check private-elements within 'cmp /usr/share/pgkit/private.dic \
    /usr/lib/python3/dist-packages/pgkit/private.dic'
check python within 'cd / && python3 -c "import pgkit; print(pgkit.library_version())" | grep 2.86e'
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
