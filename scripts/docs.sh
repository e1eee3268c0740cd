#!/bin/sh
# Makes docs/effects.md and its pictures: the description of the exports names the command lines, the command of this
# build runs them. Effects that seed themselves with the time look different each time.
#
#     scripts/docs.sh [path of the zlv command]
set -eu
cd "$(dirname "$0")/.."

zlv=${1:-}
if [ -z "$zlv" ]; then
    scripts/setup.sh library
    cmake --preset linux
    cmake --build --preset linux --target zlv
    zlv=build/linux/tools/zlv/zlv
fi

mkdir -p docs/pictures
rm -f docs/pictures/*.jpg docs/pictures/*.txt
zlv() { "$zlv" "$@"; }
lines=$(python3 -B api/generate.py --pictures)
eval "set -e
$lines"
python3 -B api/generate.py --effects docs/effects.md
echo "docs/effects.md: $(grep -c '^### ' docs/effects.md) functions, $(find docs/pictures -type f | wc -l) pictures," \
    "$(du -cb docs/pictures/* | tail -1 | cut -f1) bytes"
