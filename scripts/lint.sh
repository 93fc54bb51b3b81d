#!/usr/bin/env bash
# Checks the formatting of all sources, then runs clang-tidy over the sources of
# the Linux build.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/sources.sh | xargs clang-format --dry-run -Werror
cmake --preset release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON > /dev/null
# Sources of other platforms have no compile command here.
mapfile -t files < <(python3 - << 'PY'
import json, os
for entry in json.load(open("build/release/compile_commands.json")):
    name = os.path.relpath(entry["file"])
    if not name.startswith(("build", "..")):
        print(name)
PY
)
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/release --quiet --extra-arg=-Wno-unknown-warning-option \
  --warnings-as-errors='*'
