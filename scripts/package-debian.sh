#!/usr/bin/env bash
# Builds the Debian packages of debian/control from a copy of the sources, puts
# them into dist/, and has lintian look at them.
set -euo pipefail
cd "$(dirname "$0")/.."

# Debhelper works inside the source folder; a copy keeps this one clean.
readonly folder=build/package
readonly sources="CHANGELOG.md CMakeLists.txt LICENSE cmake completions debian docs examples
  include python scripts src tools"

# The library and the packages must not go by two versions.
check_version() {
  local packaged
  packaged=$(dpkg-parsechangelog -S Version)
  grep -q "^project(ormidex VERSION ${packaged%-*} " CMakeLists.txt || {
    echo "ormidex: debian/changelog is at $packaged, CMakeLists.txt is not" >&2
    return 1
  }
}

build_packages() {
  mkdir -p "$folder/ormidex"
  # shellcheck disable=SC2086  # one word each
  cp -r $sources "$folder/ormidex/"
  # Debhelper gives the build a home of its own; the compiler cache stays the user's.
  if command -v ccache > /dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
  fi
  (cd "$folder/ormidex" && DEB_BUILD_OPTIONS="noautodbgsym terse parallel=${JOBS:-$(nproc)}" \
    dpkg-buildpackage --build=binary --no-sign) > "$folder/log" 2>&1 || {
    tail -n 40 "$folder/log" | cut -c 1-200 >&2
    echo "ormidex: the packages were not built; $folder/log has it all" >&2
    return 1
  }
}

check_version
rm -rf "$folder"
build_packages
mkdir -p dist
rm -f dist/*.deb
cp "$folder"/*.deb dist/
ls dist/*.deb
