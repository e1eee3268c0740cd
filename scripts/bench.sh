#!/bin/sh
# Measures every export beside its peers: prints one table and writes build/bench/results.json.
#   scripts/bench.sh                    every row
#   scripts/bench.sh InvertImage        rows whose name contains the word
#   scripts/bench.sh --all-targets ...  every instruction set that this processor runs
set -e
cd "$(dirname "$0")/.."
build="${ZLV_BENCH_BUILD:-build/bench}"

all_targets=
rows=
for word in "$@"; do
    case "$word" in
        --all-targets) all_targets=$word ;;
        *) rows="--rows=$word" ;;
    esac
done

mkdir -p "$build"
cmake --preset bench -B "$build" >"$build/configure.log"
cmake --build "$build" --target zlv_bench -j2
"$build/bench/zlv_bench" $all_targets ${rows:+"$rows"} \
    --benchmark_min_time=0.01 --benchmark_enable_random_interleaving=true \
    --benchmark_out_format=json --benchmark_out="$build/raw.json" >"$build/bench.log"
exports=
if [ -z "$rows" ]; then
    exports="$build/exports.txt"
    python3 -B api/generate.py --list "$build" >"$exports"
fi
python3 -B bench/table.py "$build/raw.json" bench/targets.toml "$build/results.json" ${exports:+"$exports"}
