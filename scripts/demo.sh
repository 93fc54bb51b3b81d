#!/usr/bin/env bash
# Shows the library at work: the tool opens a simulated colour camera through the
# exported functions, streams from it, and writes pictures to look at.
set -euo pipefail
cd "$(dirname "$0")/.."

tool=build/release/tools/ormidex/ormidex
pictures=${ORMIDEX_DEMO_DIR:-build/demo}

if [ ! -x "$tool" ]; then
  echo "ormidex: $tool has not been built; run 'make build'" >&2
  exit 1
fi
mkdir -p "$pictures"
export ORMIDEX_SIMULATOR=${ORMIDEX_SIMULATOR:-1}
"$tool" list
"$tool" info
"$tool" capture -o "$pictures/capture.bmp"
echo "Pictures are in $pictures"
