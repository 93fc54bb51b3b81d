#!/usr/bin/env bash
# Runs every benchmark program of the release build; arguments are handed on.
set -euo pipefail
cd "$(dirname "$0")/.."

status=0
found=0
while IFS= read -r program; do
  found=1
  echo "== $program"
  "$program" "$@" || status=1
done < <(find build/release/bench -type f -executable -name '*_bench' | sort)
[ "$found" = 1 ] || { echo "ormidex: there is no benchmark in build/release/bench" >&2; exit 1; }
exit "$status"
