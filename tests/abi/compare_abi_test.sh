#!/usr/bin/env bash
# The comparison must see what applications would stumble over: in copies of the
# record a function has another argument, another result or another name, and a
# struct is longer.
#
# usage: compare_abi_test.sh RECORD LIBRARY
set -u
record=$1
library=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
compare=$(dirname "$0")/compare_abi.sh
passed=0
failed=0

# refuses NAME SED-EXPRESSION
refuses() {
  sed -E "$2" "$record" > "$folder/changed.abi"
  if cmp -s "$record" "$folder/changed.abi"; then
    echo "FAILED $1: the expression changes nothing"
    failed=$((failed + 1))
  elif "$compare" "$folder/changed.abi" "$library" > "$folder/log" 2>&1; then
    echo "FAILED $1: the comparison finds no difference"
    failed=$((failed + 1))
  else
    passed=$((passed + 1))
  fi
}

readonly gamma="/<function-decl name='OrmidexSetGamma'/,/<\/function-decl>/"
readonly rect="/<class-decl name='OrmidexRect'/,/<\/class-decl>/"
unsigned=$(sed -nE "s/.*<type-decl name='unsigned int' .* id='([0-9a-f]+)'.*/\1/p" "$record")

refuses "an argument more" "$gamma s|^( *<parameter .*name='gamma'/>)|\1\n\1|"
refuses "an argument of another type" \
  "$gamma s|type-id='[0-9a-f]+' name='gamma'|type-id='$unsigned' name='gamma'|"
refuses "a function that is gone" "s/OrmidexSetGamma\b/OrmidexSetGammaOnce/g"
refuses "a struct of another size" "$rect s|size-in-bits='128'|size-in-bits='160'|"
refuses "a member at another place" "$rect s|in-bits='96'|in-bits='128'|"

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
