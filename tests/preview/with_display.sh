#!/usr/bin/env bash
# Runs a command on an X11 display of its own, which is seen by nobody.
#
# usage: with_display.sh SCREEN COMMAND...   (SCREEN: 1400x1100x24, say)
set -euo pipefail
screen=$1
shift

numbers=$(mktemp)
Xvfb -displayfd 1 -screen 0 "$screen" -noreset -nolisten tcp > "$numbers" 2> /dev/null &
server=$!
trap 'kill "$server" 2> /dev/null || true; wait "$server" 2> /dev/null || true; rm -f "$numbers"' EXIT
for _ in $(seq 200); do
  [ ! -s "$numbers" ] || break
  sleep 0.05
done
[ -s "$numbers" ] || { echo "with_display.sh: Xvfb did not start" >&2; exit 1; }
DISPLAY=":$(cat "$numbers")" "$@"
