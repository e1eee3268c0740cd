#!/bin/sh
# Checks the formatting of every C and C++ file, then runs clang-tidy over the library.
#   scripts/lint.sh [--all] [word that a file's path must contain]
# With --all also over the command and the benchmarks, over the kernels of every instruction set instead of one, and
# with the checks that follow every path through a function, which take most of the time.
cd "$(dirname "$0")/.." || exit 1
presets=linux
kernels=avx2
checks=-clang-analyzer-*
linux_folders=src/
if [ "${1:-}" = --all ]; then
    presets="linux bench"
    kernels=
    checks=
    linux_folders="src/ tools/"
    shift
fi
word=${1:-}
build="${ZLV_LINT_BUILD:-build}"
failed=0

folders=
for folder in src include tools tests bench examples; do
    [ -d "$folder" ] && folders="$folders $folder"
done
# shellcheck disable=SC2086  # the list of folders is words on purpose
files=$(find $folders -name '*.cpp' -o -name '*.h' -o -name '*.c' | grep -F -- "$word" | sort)
[ -n "$files" ] || { echo "no file to check" >&2; exit 1; }
echo "$files" | xargs clang-format --dry-run -Werror || failed=1

for preset in $presets; do
    mkdir -p "$build/$preset"
    cmake --preset $preset -B "$build/$preset" >"$build/$preset/configure.log" 2>&1 || {
        cat "$build/$preset/configure.log"
        exit 1
    }
done
# What is generated must be there before anything that includes it can be read.
cmake --build "$build/linux" --target zlv_export_lists -j2 >/dev/null || exit 1

tidy() {
    mkdir -p "$build/$1/tidy"
    sources=$(python3 - "$build/$1" "$word" "$PWD" "$2" "$kernels" <<'END'
import json, os, sys
build, word, root, folders, kernels = sys.argv[1:]
commands = [entry for entry in json.load(open(f"{build}/compile_commands.json"))
            if not kernels or ".kernels." not in entry["file"] or f"ZLV_TARGET_{kernels}" in entry["command"]]
json.dump(commands, open(f"{build}/tidy/compile_commands.json", "w"))
files = {os.path.relpath(entry["file"], root) for entry in commands}
print("\n".join(sorted(f for f in files if f.startswith(tuple(folders.split())) and word in f and f.endswith(".cpp"))))
END
    )
    [ -z "$sources" ] && { [ -n "$word" ] && return 0; echo "nothing to check in $1" >&2; return 1; }
    echo "$sources" |
        xargs -P"$(nproc)" -n1 clang-tidy --quiet --checks="$checks" -p "$build/$1/tidy" \
            --extra-arg=-Wno-unknown-warning-option 2>/dev/null
}
for preset in $presets; do
    if [ $preset = linux ]; then folders=$linux_folders; else folders="bench/"; fi
    tidy $preset "$folders" || failed=1
done

[ $failed = 0 ] && echo "clean"
exit $failed
