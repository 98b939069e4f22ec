#!/usr/bin/env bash
# Runs a program that was built for Linux on another processor: run-emulated.sh TRIPLET PROGRAM ARGUMENT...
# The loader is started by hand: an emulator that is told where that processor's libraries are takes other
# paths for paths there, too, that of the root directory above all.
set -euo pipefail
triplet=$1
shift
libraries=/usr/$triplet/lib
gconv=$(cd "$(dirname "$0")/.." && pwd)/build/cross/$triplet/usr/lib/$triplet/gconv
exec "qemu-${triplet%%-*}" -E "GCONV_PATH=$gconv" "$libraries"/ld*.so.1 --library-path "$libraries" "$@"
