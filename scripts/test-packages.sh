#!/usr/bin/env bash
# Makes the Debian packages and looks at them as a newcomer does: lintian, then, from the installed
# packages in a bare root (debootstrap, as root), what docs/first-steps.md says to type for each kind of
# host, and what else the packages promise. The last line is "N passed, M failed".
#
#   test-packages.sh [ROOT]    ROOT: a bare root that is there already; it is changed
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
        echo "ok     package  $name"
        passed=$((passed + 1))
    else
        echo "FAILED package  $name"
        tail -n 20 "$packages/$name.log"
        failed=$((failed + 1))
    fi
}

within() { chroot "$root" env LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive bash -euc "$1"; }

lint() { lintian --allow-root --fail-on error,warning "$packages"/*.changes; }

# What hosts are built with, and the sources of the wheel.
tools="g++ cmake make pkg-config python3-pip python3-setuptools python3-venv python3-wheel"
tools+=" librapidxml-dev rapidjson-dev zlib1g-dev"

scripts/install-packages.sh packages
scripts/make-debian-packages.sh "$packages"
check lintian lint

root=${1:-}
if [[ -z $root ]]; then
    root=$(mktemp -d -t pgkit-root-XXXXXX)
    trap 'rm -rf "$root"' EXIT
    debootstrap --variant=minbase bookworm "$root" >"$packages/debootstrap.log" 2>&1
fi
rm -rf "$root/packages"
mkdir -p "$root/packages"
cp "$packages"/*.deb "$root/packages"
rm -f "$root"/packages/*-dbgsym_*
check installation within "cd /packages && { apt-get update -q || true; } &&
    apt-get install -qy --reinstall --no-install-recommends ./*.deb $tools"

status=0
"$tests/first_steps.py" "$root" >"$packages/first-steps.log" || status=$?
sed '$d' "$packages/first-steps.log"
if [[ $(tail -n 1 "$packages/first-steps.log") =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
    passed=$((passed + BASH_REMATCH[1]))
    failed=$((failed + BASH_REMATCH[2]))
else
    echo "FAILED first    exit status $status"
    failed=$((failed + 1))
fi

cp "$tests"/{CMakeLists.txt,*.cpp,*.c} "$root/packages"
cp tests/data/encapsulated/rtdose_rle_15frames_no_bot.dcm "$root/packages/frames.dcm"
check targets within 'cd /packages && rm -rf build && cmake -S . -B build && cmake --build build &&
    build/consumer made.dcm | grep "DOE^JANE" && build/layer_consumer layer.dcm | grep "DOE^JANE" &&
    build/consumer_in_c | grep "PixelData OWOB" && build/imaging_consumer frames.dcm | grep "15 frames"'
# The trigger of the package has made the library known.
check linker-cache within 'ldconfig -p | grep "libpgkit.so.2"'
check private-elements within 'cmp /usr/share/pgkit/private.dic \
    /usr/lib/python3/dist-packages/pgkit/private.dic'
check manual within 'gunzip --stdout /usr/share/man/man1/pgtool.1.gz | grep "^.TH"'
check completion within 'source /usr/share/bash-completion/completions/pgtool && complete -p pgtool'
check removal within 'dpkg --purge python3-pgkit pgkit-tools libpgkit-dev libpgkit2 &&
    ! find /usr -name "*pgkit*" -o -name "*pgview32*" -o -name "*pgtool*" | grep . &&
    ! ldconfig -p | grep libpgkit'
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
