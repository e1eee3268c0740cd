#!/bin/sh
# Runs a Windows program under Wine with a prefix of the build's own, quietly and without a display.
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${ZLV_WINEPREFIX:-$here/build/wine}" WINEDEBUG=-all DISPLAY= WINEDLLOVERRIDES="mscoree,mshtml="
mkdir -p "$WINEPREFIX"

wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine) || {
    echo "Wine is not installed: apt-get install wine64" >&2
    exit 127
}
server=$(command -v wineserver64 || command -v /usr/lib/wine/wineserver64 || command -v wineserver || echo true)

# Programs that start at the same time must not make the prefix or start its server twice: the first one does both, and
# the server stays for the others.
(
    flock 9
    "$server" -p30 >/dev/null 2>&1 9>&-
    if [ ! -e "$WINEPREFIX/ready" ]; then
        "$wine" cmd /c exit >/dev/null 2>&1 9>&-
        touch "$WINEPREFIX/ready"
    fi
) 9>"$WINEPREFIX/lock"

exec "$wine" "$@"
