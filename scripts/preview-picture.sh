#!/usr/bin/env bash
# Takes a picture of the display while the preview runs on it.
#
# usage: preview-picture.sh TOOL FILE
set -euo pipefail
"$1" preview -q --seconds 4 < /dev/null &
preview=$!
sleep 2
import -window root "$2"
wait "$preview"
echo "$2"
