#!/usr/bin/env bash
# Builds and tests presets one after the other and ends with the totals of all.
# Every preset is run even when an earlier one failed.
#
# usage: test.sh PRESET...   (release, asan, tsan)
set -euo pipefail
cd "$(dirname "$0")/.."

jobs=$(nproc)

run_preset() {
  local preset=$1 results=$PWD/build/results/$1
  rm -rf "$results"
  mkdir -p "$results"
  cmake --preset "$preset" > "$results/configure.log" || return
  cmake --build --preset "$preset" -j "$jobs" || return
  echo "== tests: $preset"
  # GoogleTest programs leave one report each in the folder.
  GTEST_OUTPUT="xml:$results/" \
    ASAN_OPTIONS=allocator_may_return_null=1:detect_stack_use_after_return=1 \
    TSAN_OPTIONS=halt_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir "build/$preset" -j "$jobs" --output-on-failure --no-tests=error \
    --output-junit "$results/ctest.xml"
}

status=0
results=()
for preset in "$@"; do
  run_preset "$preset" || status=1
  results+=("build/results/$preset")
done
python3 scripts/totals.py "${results[@]}" || status=1
exit "$status"
