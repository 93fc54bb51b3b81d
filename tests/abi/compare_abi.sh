#!/usr/bin/env bash
# Compares a built library with the record of its interface. New functions are
# welcome; whatever else differs fails. (The record has no places in the source, so
# abidiff must not be told where the headers are: it would take every type for a
# private one and forgive its change.)
#
# usage: compare_abi.sh RECORD LIBRARY
set -u
abidiff --no-added-syms "$1" "$2" || {
  echo "The interface differs from $1: see \"The interface\" in CONTRIBUTING.md"
  exit 1
}
