#!/usr/bin/env bash
# Writes the record of the library's interface anew, after functions were added:
# tests/abi/libormidex.so.1.abi, which the tests compare each build with, and
# debian/libormidex1.symbols, the exported names and the version each came with.
#
# usage: update-abi.sh LIBRARY
set -euo pipefail
library=$(realpath "$1")
cd "$(dirname "$0")/.."

readonly symbols=debian/libormidex1.symbols
version=$(dpkg-parsechangelog -S Version)

abidw --headers-dir include --exported-interfaces-only --no-show-locs --no-corpus-path \
  --no-comp-dir-path --type-id-style hash --out-file tests/abi/libormidex.so.1.abi "$library"

# Names that are listed keep the version that they came with.
nm -D --defined-only --with-symbol-versions "$library" | awk '{ print $3 }' | sed 's/@@/@/' |
  while read -r name; do
    case $name in *@*) ;; *) name=$name@$name ;; esac
    grep -q "^ $name " "$symbols" || echo " $name ${version%-*}"
  done > build/new-symbols
{
  grep -v '^ ' "$symbols"
  { grep '^ ' "$symbols"; cat build/new-symbols; } | LC_ALL=C sort
} > build/symbols
mv build/symbols "$symbols"
rm build/new-symbols
git diff --stat -- tests/abi "$symbols"
