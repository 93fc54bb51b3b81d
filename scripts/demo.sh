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
rm -rf "$pictures"
mkdir -p "$pictures"

section() { printf '\n== %s\n' "$1"; }

section "the cameras: a colour one of each generation, and a monochrome one"
export ORMIDEX_SIMULATOR='generation=2;generation=1;imager=mono'
"$tool" list

section "streaming"
"$tool" capture --frames 40 -o "$pictures/colour.bmp"
"$tool" capture --frames 20 --camera 1 --no-header -o "$pictures/first-generation.bmp"
"$tool" capture --frames 40 --camera 2 --no-header -o "$pictures/monochrome.bmp"
"$tool" capture --frames 10 --set window=1280x1024 --no-header -o "$pictures/full-frame.bmp"

section "one still frame in every format"
for format in bmp tif jpg ppm raw; do
  "$tool" capture --still --no-header -o "$pictures/still.$format"
done

section "frames on a trigger, ten a second"
ORMIDEX_SIMULATOR=trigger=hardware:10 "$tool" trigger -n 3 -o "$pictures/triggered-#.bmp"

section "a dark scene in lamplight, before and after the automatic controls"
export ORMIDEX_SIMULATOR='tint=tungsten,light=0.3'
"$tool" capture --no-header -o "$pictures/before.bmp"
"$tool" auto exposure --save "$pictures/exposed.json" -o "$pictures/exposed.bmp"
"$tool" auto white-balance --load "$pictures/exposed.json" -o "$pictures/balanced.bmp"

section "the live preview in its window"
if command -v Xvfb > /dev/null && command -v import > /dev/null; then
  ORMIDEX_SIMULATOR=1 tests/preview/with_display.sh 800x600x24 \
    scripts/preview-picture.sh "$tool" "$pictures/preview.png"
else
  echo "no picture of it: Xvfb and ImageMagick's import are needed"
fi

section "done"
echo "The pictures are in $pictures"
