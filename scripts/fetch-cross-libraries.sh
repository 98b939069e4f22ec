#!/usr/bin/env bash
# Fetches zlib for another processor, and the character sets of its C library, which the compiler's
# packages lack: fetch-cross-libraries.sh TRIPLET, such as s390x-linux-gnu. They are unpacked below
# build/cross, so that nothing is installed here and this machine need not know that architecture.
set -euo pipefail
cd "$(dirname "$0")/.."
triplet=$1
root=$PWD/build/cross/$triplet
gconv=usr/lib/$triplet/gconv
[[ ! -e $root/usr/include/zlib.h || ! -d $root/$gconv ]] || exit 0

case $triplet in
    aarch64-linux-gnu) architecture=arm64 ;;
    *) architecture=${triplet%%-*} ;;
esac
apt=$(mktemp -d)
trap 'rm -rf "$apt"' EXIT
mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$root"
options=(-o "APT::Architecture=$architecture" -o "APT::Architectures=$architecture"
    -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt/cache" -o "APT::Sandbox::User=$(id -un)")
apt-get "${options[@]}" --quiet=2 update
(cd "$apt" && apt-get "${options[@]}" --quiet=2 download zlib1g zlib1g-dev libc6)
for package in "$apt"/zlib1g*.deb; do
    dpkg-deb --extract "$package" "$root"
done
dpkg-deb --fsys-tarfile "$apt"/libc6_*.deb | tar --extract --directory "$root" "./$gconv"
