#!/usr/bin/env bash
# Makes the Debian packages libpgkit2, libpgkit-dev, pgkit-tools and python3-pgkit of what is
# committed, in a directory: make-debian-packages.sh [DIRECTORY], build/debian unless told otherwise.
# The packages of one commit are the same byte by byte wherever they are made.
set -euo pipefail
directory=$(realpath -m "${1:-build/debian}")
cd "$(dirname "$0")/.."

scripts/install-packages.sh packages
version=$(sed -n 's/^project(pgkit VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
source=$directory/pgkit-$version
rm -rf "$directory"
mkdir -p "$source"
git archive HEAD | tar --extract --directory "$source"
cp -r packaging/debian "$source/debian"
cd "$source"
DEB_BUILD_OPTIONS="nocheck parallel=$(nproc)" LC_ALL=C.UTF-8 \
    dpkg-buildpackage --build=binary --no-sign >"$directory/build.log" 2>&1 ||
    { tail -n 40 "$directory/build.log" >&2; exit 1; }
rm -r "$source"
ls "$directory"/*.deb
