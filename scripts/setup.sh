#!/bin/sh
# Installs the Debian packages that a job lacks, and says which.
#
#     scripts/setup.sh library|demo|windows|test|bench|lint
set -eu

tools="cmake ninja-build g++ python3 pkg-config libstb-dev libcli11-dev nlohmann-json3-dev"
tests="googletest libmpfr-dev"
windows="g++-mingw-w64-x86-64-posix wine64 $tests"
sanitizers="clang lld llvm libclang-rt-14-dev"

case "${1:-}" in
library) wanted="$tools $tests" ;;
demo) wanted="$tools $tests" ;;
windows) wanted="$tools $windows" ;;
test) wanted="$tools $windows $sanitizers clang-format clang-tidy python3-numpy" ;;
bench) wanted="$tools $tests libbenchmark-dev libopencv-dev" ;;
lint) wanted="$tools $tests clang clang-format clang-tidy libbenchmark-dev" ;;
*)
    echo "usage: scripts/setup.sh library|demo|windows|test|bench|lint" >&2
    exit 2
    ;;
esac

missing=""
for package in $wanted; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing what is missing:$missing"
as_root=""
[ "$(id -u)" -eq 0 ] || as_root="sudo"
export DEBIAN_FRONTEND=noninteractive
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086  # the list is meant to be split
if ! { $as_root apt-get update && $as_root apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "The packages could not be installed." >&2
    exit 1
fi
