#!/usr/bin/env bash
# Shows the library at work: the tool opens simulated cameras through the exported
# functions, streams from them, and writes pictures to look at.
set -euo pipefail
cd "$(dirname "$0")/.."

tool=build/release/tools/ormidex/ormidex
pictures=${ORMIDEX_DEMO_DIR:-build/demo}

if [ ! -x "$tool" ]; then
  echo "ormidex: $tool has not been built; run 'make build'" >&2
  exit 1
fi
mkdir -p "$pictures"
# A colour camera of each generation and a monochrome one.
export ORMIDEX_SIMULATOR='generation=2;generation=1;imager=mono'

"$tool" list
echo
"$tool" info
echo
"$tool" capture --force --frames 40 -o "$pictures/colour.bmp"
"$tool" capture --force --frames 20 --camera 1 --no-header -o "$pictures/first-generation.bmp"
"$tool" capture --force --frames 40 --camera 2 --no-header -o "$pictures/monochrome.bmp"
"$tool" capture --force --frames 10 --size 1280x1024 --no-header -o "$pictures/full-frame.bmp"
echo
echo "The pictures are in $pictures"
