#!/usr/bin/env bash
# Installs the Debian packages that the other scripts need. Silent when nothing is missing.
#
#   install-packages.sh        to build for both platforms and run the Windows build
#   install-packages.sh test   and to run every test
#   install-packages.sh bench  and to run the benchmarks beside other libraries
#   install-packages.sh packages   and to make and check the Debian packages
#   install-packages.sh platforms  and to build for other processors and run that here
set -euo pipefail

# What tests can do without: they say what they skip.
optional=()
packages=(cmake ninja-build g++ g++-mingw-w64-x86-64 rapidjson-dev librapidxml-dev wine64)
packages+=(libcli11-dev zlib1g-dev libz-mingw-w64-dev)
case ${1:-} in
    test)
        packages+=(python3-numpy python3-build python3-setuptools python3-wheel python3-pip mypy)
        packages+=(python3-distributed libpython3-dev)
        packages+=(googletest libgmock-dev python3 python3-pydicom dcmtk dicom3tools pkg-config gdb)
        packages+=(xorriso fonts-dejavu-core)
        optional+=(libgdcm-tools chromium-headless-shell)
        packages+=(clang clang-format clang-tidy cppcheck libclang-rt-dev lld llvm)
        ;;
    packages)
        packages+=(debhelper dh-python dpkg-dev fakeroot git libpython3-dev lintian python3 debootstrap)
        packages+=(python3-setuptools python3-wheel)
        ;;
    platforms) packages+=(googletest libgmock-dev g++-aarch64-linux-gnu g++-s390x-linux-gnu qemu-user clang) ;;
    bench) packages+=(libbenchmark-dev libdcmtk-dev libgdcm-dev valgrind python3)
        packages+=(python3-numpy python3-pydicom libpython3-dev) ;;
esac

is_installed() {
    [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

missing=()
for package in "${packages[@]}"; do
    is_installed "$package" || missing+=("$package")
done
wanted=()
for package in "${optional[@]}"; do
    is_installed "$package" || wanted+=("$package")
done
[[ ${#missing[@]} -gt 0 || ${#wanted[@]} -gt 0 ]] || exit 0

if [[ $(id -u) -eq 0 ]]; then
    asRoot=(env)
elif sudo --non-interactive true 2>/dev/null; then
    asRoot=(sudo)
elif [[ ${#missing[@]} -eq 0 ]]; then
    exit 0
else
    echo "Please install (as root): apt-get install ${missing[*]}" >&2
    exit 1
fi

install() {
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --quiet=2 --no-install-recommends "$@" >/dev/null
}
# The package lists of a fresh machine or container are often missing or stale.
if [[ ${#missing[@]} -gt 0 ]]; then
    echo "Installing ${missing[*]}"
    install "${missing[@]}" 2>/dev/null ||
        { "${asRoot[@]}" apt-get update --quiet=2 && install "${missing[@]}"; }
fi
for package in "${wanted[@]}"; do
    echo "Installing $package"
    install "$package" 2>/dev/null || echo "$package is not to be had: tests that need it skip" >&2
done
