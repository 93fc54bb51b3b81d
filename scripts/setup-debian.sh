#!/usr/bin/env bash
# Installs what a build needs and the machine lacks: on Debian, as root, by
# itself; elsewhere it says what is missing and fails.
#
# usage: setup-debian.sh PURPOSE...   (build, bench, format, package, windows)
set -euo pipefail

# package=what shows that it is there: a command, or the absolute path of a file
readonly build_needs="
  g++=g++ cmake=cmake ninja-build=ninja python3=/usr/bin/python3
  python3-numpy=/usr/lib/python3/dist-packages/numpy pkg-config=pkg-config
  libgtest-dev=/usr/include/gtest/gtest.h
  libbenchmark-dev=/usr/include/benchmark/benchmark.h
  libjpeg62-turbo-dev=/usr/include/jpeglib.h
  libjpeg-turbo-progs=djpeg libtiff-tools=tiffinfo imagemagick=/usr/bin/identify
  libstb-dev=/usr/include/stb/stb_image.h
  libcli11-dev=/usr/include/CLI/CLI.hpp nlohmann-json3-dev=/usr/include/nlohmann/json.hpp
  libfmt-dev=/usr/include/fmt/core.h
  libxcb1-dev=/usr/include/xcb/xcb.h xvfb=Xvfb abigail-tools=abidiff doxygen=doxygen"
readonly bench_needs="$build_needs libopencv-dev=/usr/include/opencv4/opencv2/core.hpp"
readonly format_needs="clang-format=clang-format clang-tidy=clang-tidy $build_needs"
readonly package_needs="$build_needs build-essential=/usr/share/build-essential/list
  debhelper=dh dh-python=dh_python3 dpkg-dev=dpkg-buildpackage lintian=lintian"
readonly windows_needs="$build_needs
  g++-mingw-w64-i686-win32=i686-w64-mingw32-g++-win32
  binutils-mingw-w64-i686=i686-w64-mingw32-windres
  nasm=nasm dpkg-dev=dpkg-source patch=patch xz-utils=xz
  debootstrap=/usr/sbin/debootstrap zip=zip util-linux=unshare"

is_there() {
  case $1 in
    /*) [ -e "$1" ] ;;
    *) command -v "$1" > /dev/null ;;
  esac
}

# Prints the packages of a list of needs whose sign is not there.
missing_packages() {
  local need
  for need in "$@"; do
    is_there "${need#*=}" || echo "${need%%=*}"
  done | sort -u
}

needs_of() {
  case $1 in
    build) echo "$build_needs" ;;
    bench) echo "$bench_needs" ;;
    format) echo "$format_needs" ;;
    package) echo "$package_needs" ;;
    windows) echo "$windows_needs" ;;
    *) echo "setup-debian.sh: unknown purpose '$1'" >&2 && return 1 ;;
  esac
}

needs=""
for purpose in "$@"; do
  needs="$needs $(needs_of "$purpose")"
done
# shellcheck disable=SC2086  # one word each
mapfile -t missing < <(missing_packages $needs)
[ "${#missing[@]}" -gt 0 ] || exit 0

if ! command -v apt-get > /dev/null; then
  echo "ormidex: this machine lacks what these Debian packages hold: ${missing[*]}" >&2
  echo "ormidex: install their equivalents, then try again" >&2
  exit 1
fi
if [ "$(id -u)" != 0 ]; then
  echo "ormidex: missing packages: ${missing[*]}" >&2
  echo "ormidex: install them with: sudo apt-get install ${missing[*]}" >&2
  exit 1
fi

echo "ormidex: installing ${missing[*]}" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
export DEBIAN_FRONTEND=noninteractive
# A third-party source that is out of order does not matter as long as the
# packages themselves can be installed.
apt-get update > "$log" 2>&1 || cat "$log" >&2
if ! apt-get install -y --no-install-recommends "${missing[@]}" > "$log" 2>&1; then
  tail -n 40 "$log" >&2
  echo "ormidex: the packages could not be installed" >&2
  exit 1
fi
