#!/bin/sh
# Runs a Windows program under Wine with a prefix of the build's own, quietly and without a display.
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${ZLV_WINEPREFIX:-$here/build/wine}" WINEDEBUG=-all DISPLAY= WINEDLLOVERRIDES="mscoree,mshtml="
mkdir -p "$WINEPREFIX"
for wine in wine64 /usr/lib/wine/wine64 wine; do
    command -v "$wine" >/dev/null 2>&1 && exec "$wine" "$@"
done
echo "Wine is not installed: apt-get install wine64" >&2
exit 127
