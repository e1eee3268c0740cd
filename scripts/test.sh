#!/bin/bash
# Builds and runs every test there is; ends with one line that counts them.
#
#     scripts/test.sh                   all stages
#     scripts/test.sh shipped windows   these alone
#
# A stage is a preset of CMakePresets.json, or `lint`. What a stage prints is kept in build/test-logs. Every test has
# its stage: those that look inside the library run on Windows and, with Clang, under the sanitizers; `shipped` is GCC's
# library seen from outside, with the command; `tsan` is also the library without intrinsics. The presets linux, clang,
# portable and fuzz build the same in other mixtures, for work on one of them.
set -u
cd "$(dirname "$0")/.."

stages=("$@")
[ ${#stages[@]} -gt 0 ] || stages=(lint shipped debug windows asan tsan)

scripts/setup.sh test || exit 1
logs=build/test-logs
mkdir -p "$logs"
passed=0
failed=0

note_stage() { # stage, passed, failed, seconds
    passed=$((passed + $2))
    failed=$((failed + $3))
    printf '%-10s %4d passed, %d failed  (%d s)\n' "$1" "$2" "$3" "$4"
}

run_preset() { # preset; prints what failed
    local log=$logs/$1.log
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$log" 2>&1; then
        tail -n 60 "$log"
        stage_failed=1
        return
    fi
    ctest --preset "$1" --no-tests=error -j 2 >>"$log" 2>&1
    local summary
    summary=$(sed -n 's/^[0-9]*% tests passed, \([0-9]*\) tests\? failed out of \([0-9]*\)$/\1 \2/p' "$log" | tail -n 1)
    if [ -z "$summary" ]; then
        tail -n 60 "$log"
        stage_failed=1
        return
    fi
    stage_failed=${summary% *}
    stage_passed=$((${summary#* } - stage_failed))
    [ "$stage_failed" -eq 0 ] || sed -n '/^ *Start/,$p' "$log" | grep -v -e '   Passed ' -e '^ *Start' | tail -n 150
}

run_lint() {
    if scripts/lint.sh >"$logs/lint.log" 2>&1; then
        stage_passed=1
    else
        tail -n 60 "$logs/lint.log"
        stage_failed=1
    fi
}

for stage in "${stages[@]}"; do
    began=$SECONDS
    stage_passed=0
    stage_failed=0
    if [ "$stage" = lint ]; then run_lint; else run_preset "$stage"; fi
    note_stage "$stage" "$stage_passed" "$stage_failed" $((SECONDS - began))
done

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
