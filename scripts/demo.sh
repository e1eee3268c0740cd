#!/bin/sh
# Builds the library and the command, and shows every effect on a photograph: build/gallery/index.html.
set -eu
cd "$(dirname "$0")/.."

if [ -x scripts/setup.sh ]; then
    scripts/setup.sh demo
fi
cmake --preset linux
cmake --build --preset linux --target zlv
build/linux/tools/zlv/zlv gallery examples/pictures/coffee.png build/gallery
echo "Open file://$PWD/build/gallery/index.html in a browser."
