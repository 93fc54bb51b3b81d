#!/usr/bin/env bash
# Runs the tests of the Windows build under Wine: the cross-compiled test
# programs, then the tests of tests/windows. Arguments choose among the latter
# (see tests/windows/run.py). Ends with the totals.
set -euo pipefail
source "$(dirname "$0")/windows-common.sh"
cd "$project"

[ "$(id -u)" = 0 ] || die "the Windows tests change into Wine's root, which needs root"
[ -e "$wine_root/.ormidex-stamp" ] || die "no Wine in $wine_root; run scripts/windows-root.sh wine"
[ -d build/windows ] || die "nothing has been built; run make windows"

results=build/results/windows
rm -rf "$results" "$results-files"
mkdir -p "$results"
# The same camera's pictures by the Linux build, for comparison.
make_linux_pictures() {
  local pictures=$project/$results/linux library=$project/build/release/src/frame
  export ORMIDEX_SIMULATOR=pace=fast,seed=11,noise=2
  mkdir -p "$pictures" &&
    cmake --preset release &&
    cmake --build --preset release -j "$(nproc)" --target ormidex ormidex_tool &&
    gcc -O2 -I include examples/c/first_picture.c -L "$library" -lormidex \
      -Wl,-rpath,"$library" -o "$pictures/first_picture" &&
    "$pictures/first_picture" "$pictures/example.bmp" &&
    build/release/tools/ormidex/ormidex capture -o "$pictures/tool.bmp"
}

status=0
(quietly "$results/linux.log" make_linux_pictures) || status=1
project_mount=/ormidex
in_root "$wine_root" python3 /ormidex/tests/windows/run.py "$@" || status=1
# What can be checked without running it: the interface's names and sizes.
if [ "$#" = 0 ]; then
  mkdir -p "$results-files"
  ctest --test-dir build/windows -R '^abi_' --output-on-failure --no-tests=error \
    --output-junit "$project/$results-files/ctest.xml" > "$results-files/ctest.log" || {
    cat "$results-files/ctest.log"
    status=1
  }
  python3 scripts/totals.py "$results" "$results-files" || status=1
else
  python3 scripts/totals.py "$results" || status=1
fi
exit "$status"
