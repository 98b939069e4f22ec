#!/usr/bin/env bash
# Runs a program that was built for Linux on another processor: run-emulated.sh TRIPLET PROGRAM ARGUMENT...
set -euo pipefail
gconv=$(cd "$(dirname "$0")/.." && pwd)/build/cross/$1/usr/lib/$1/gconv
exec "qemu-${1%%-*}" -E "GCONV_PATH=$gconv" "${@:2}"
