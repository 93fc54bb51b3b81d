#!/usr/bin/env bash
# Writes the reference as HTML. A warning of doxygen's, an entity that is not
# documented among them, or a link that leads nowhere fails.
#
# usage: docs.sh [FOLDER]   (build/docs by default; the pages are in FOLDER/html)
set -euo pipefail
folder=$(realpath -m "${1:-$(dirname "$0")/../build/docs}")
cd "$(dirname "$0")/.."

rm -rf "$folder/html"
mkdir -p "$folder"
version=$(sed -n 's/^project(ormidex VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
{
  cat docs/Doxyfile
  echo "PROJECT_NUMBER = $version"
  echo "OUTPUT_DIRECTORY = $folder"
} | doxygen -

# What pages link to as they do in the sources.
mkdir -p "$folder/html/docs"
cp -r docs/images "$folder/html/docs/"
cp -r docs/images include LICENSE "$folder/html/"
python3 scripts/check_links.py "$folder/html"
echo "the reference is in $folder/html/index.html"
