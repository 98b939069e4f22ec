#!/usr/bin/env bash
# Runs a Windows program under Wine, without a display: wine.sh PROGRAM ARGUMENT...
# The Wine prefix is this checkout's own (or $WINEPREFIX) and is made by the first call.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

wine=
for candidate in wine64 /usr/lib/wine/wine64 wine; do
    if command -v "$candidate" >/dev/null; then
        wine=$candidate
        break
    fi
done
[[ -n $wine ]] || { echo "wine.sh: Wine is not installed (package wine64)" >&2; exit 127; }

export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=-all
# Neither .NET nor a web browser: without them the first start asks to download them.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
# Without a locale of its own, names of files are ASCII to Wine.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

# By itself the prefix's server goes three seconds after its last program, and a program that starts
# in that moment fails. A server that was started first stays for minutes. Succeeds if it did not run.
start_server() {
    local candidate
    for candidate in wineserver64 /usr/lib/wine/wineserver64 wineserver /usr/lib/wine/wineserver; do
        command -v "$candidate" >/dev/null || continue
        "$candidate" --persistent=300 </dev/null >/dev/null 2>&1 9>&-
        return
    done
    return 1
}

# Several scripts may start at once; one of them makes the prefix. The first program of a server starts
# Windows' services, which keep what it has open, such as the pipe that somebody reads it through until
# its end, as long as the server runs: that program is one that has nothing open.
mkdir -p "$WINEPREFIX"
(
    flock 9
    is_new=false
    start_server && is_new=true
    if [[ ! -e $WINEPREFIX/.pgkit-ready ]]; then
        "$wine" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1 9>&-
        touch "$WINEPREFIX/.pgkit-ready"
    elif $is_new; then
        "$wine" cmd /c exit </dev/null >/dev/null 2>&1 9>&- || true
    fi
) 9>"$WINEPREFIX/.pgkit-lock"

exec "$wine" "$@"
