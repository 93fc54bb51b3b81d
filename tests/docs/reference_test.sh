#!/usr/bin/env bash
# Writes the reference from a copy of the sources: it must have every function, and
# what lacks its documentation or leads nowhere must fail.
#
# usage: reference_test.sh SOURCE-DIR
set -u
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
passed=0
failed=0

pass() { passed=$((passed + 1)); }
fail() {
  echo "FAILED $1"
  failed=$((failed + 1))
}

make_copy() {
  rm -rf "$folder/copy"
  mkdir "$folder/copy"
  cp -r "$source"/{README.md,LICENSE,CMakeLists.txt,include,docs,scripts} "$folder/copy/"
}

write_reference() {
  (cd "$folder/copy" && scripts/docs.sh "$folder/out") > "$folder/log" 2>&1
}

# must_fail NAME PATTERN: the reference is not written, and the log says why.
must_fail() {
  if write_reference; then
    fail "$1: the reference was written"
  elif ! grep -q "$2" "$folder/log"; then
    fail "$1: $(cat "$folder/log")"
  else
    pass
  fi
}

make_copy
if write_reference; then pass; else fail "the reference: $(cat "$folder/log")"; fi
functions=$(sed -n 's/^ORMIDEX_EXPORT([0-9]*, \([A-Za-z0-9]*\),.*/\1/p' \
  "$source/src/frame/export_table.inc")
[ "$(wc -w <<< "$functions")" = 97 ] || fail "the table of exports was not read"
for function in $functions; do
  if grep -q "$function()" "$folder/out/html/ormidex_8h.html"; then
    pass
  else
    fail "the reference has no $function"
  fi
done

echo 'void OrmidexUndocumented(int number);' >> "$folder/copy/include/ormidex.h"
must_fail "a function without a comment" "OrmidexUndocumented.* is not documented"
make_copy
sed -i 's|^/// A call that did not.*||' "$folder/copy/include/ormidex.hpp"
must_fail "a class without a comment" "ormidex::Error is not documented"
make_copy
echo '[nowhere](docs/nowhere.md)' >> "$folder/copy/README.md"
must_fail "a link that leads nowhere" "nowhere.md"

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
