#!/bin/sh
# Installs the Debian packages that a job lacks, and says which.
#
#     scripts/setup.sh library|demo|windows|test|bench|lint
set -eu

tools="cmake ninja-build g++ python3 pkg-config libstb-dev libcli11-dev"
tests="googletest libmpfr-dev clang"
windows="g++-mingw-w64-x86-64-posix wine64 llvm lld"
sanitizers="libclang-rt-14-dev"
bench="libbenchmark-dev libopencv-dev libleptonica-dev libfftw3-dev libcairo2-dev liblqr-1-0-dev libimagequant-dev"

case "${1:-}" in
library | demo) wanted="$tools $tests" ;;
windows) wanted="$tools $tests $windows" ;;
test) wanted="$tools $tests $windows $sanitizers clang-format clang-tidy" ;;
bench) wanted="$tools $tests $bench" ;;
lint) wanted="$tools $tests $bench clang-format clang-tidy" ;;
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
