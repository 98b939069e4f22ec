#!/usr/bin/env bash
# Runs a program that was built for Linux on another processor:
#
#   run-emulated.sh TRIPLET [--by-loader] PROGRAM ARGUMENT...
#
# The emulator is told where that processor's libraries are, and takes other paths for paths there, too,
# that of the root directory above all. By its loader a program sees the system's paths, and the loader
# for the program that it is.
set -euo pipefail
triplet=$1
shift
libraries=/usr/$triplet/lib
gconv=$(cd "$(dirname "$0")/.." && pwd)/build/cross/$triplet/usr/lib/$triplet/gconv
emulator=("qemu-${triplet%%-*}" -E "GCONV_PATH=$gconv")
if [[ $1 == --by-loader ]]; then
    shift
    exec "${emulator[@]}" "$libraries"/ld*.so.1 --library-path "$libraries" "$@"
fi
exec "${emulator[@]}" -L "/usr/$triplet" "$@"
