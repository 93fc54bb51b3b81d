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
rm -rf "$results"
mkdir -p "$results"
status=0
project_mount=/ormidex
in_root "$wine_root" python3 /ormidex/tests/windows/run.py "$@" || status=1
python3 scripts/totals.py "$results" || status=1
exit "$status"
