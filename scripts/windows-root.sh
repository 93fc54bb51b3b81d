#!/usr/bin/env bash
# Prepares what the Windows build and its tests need beyond Debian's packages:
#   libjpeg   libjpeg for 32-bit Windows, cross-built from Debian's source package
#   wine      a root directory of the i386 architecture that holds Wine
# Everything goes into one cache, $ORMIDEX_CACHE (for root: /var/cache/ormidex,
# otherwise ~/.cache/ormidex), and is made once.
#
# Wine lives in a root of its own because an i386 Wine does not always install
# beside amd64 packages: the two indexes of an archive can differ in version.
#
# usage: windows-root.sh libjpeg|wine
set -euo pipefail
source "$(dirname "$0")/windows-common.sh"

# Raise when the recipe below changes, so that older caches are made anew.
readonly wine_recipe=1
readonly libjpeg_recipe=1
# Python runs the tests inside; Xvfb and x11-apps show windows and photograph them.
readonly wine_packages="wine32 wine xvfb x11-apps python3"

# A Windows installation as Wine makes it; each test run starts from a copy.
readonly make_prefix='
  export HOME=/root WINEPREFIX=/opt/windows WINEARCH=win32 WINEDEBUG=-all
  export WINEDLLOVERRIDES="mscoree,mshtml="
  wineboot -i && wine winecfg -v winxp && wineserver -w'

readonly suite=bookworm

# Prints the mirror that the system's own package sources give for the suite.
system_mirror() {
  local file
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [ -e "$file" ] || continue
    sed -E 's/\[[^]]*\]//' "$file" |
      awk -v suite="$suite" '$1 == "deb" && $3 == suite && / main/ { print $2 }'
  done
  for file in /etc/apt/sources.list.d/*.sources; do
    [ -e "$file" ] || continue
    awk -v suite="$suite" '
      /^URIs:/ { uri = $2 }
      /^Suites:/ { for (i = 2; i <= NF; ++i) if ($i == suite) wanted = 1 }
      /^Types:/ { deb = / deb( |$)/ }
      function finish() { if (deb && wanted && uri) print uri; uri = ""; wanted = 0; deb = 0 }
      # A comment does not end a stanza, and a stanza ends at an empty line.
      /^$/ { finish() }
      END { finish() }' "$file"
  done
}

mirror() {
  local found
  found=$(system_mirror | head -n 1)
  [ -n "$found" ] || die "no package source for $suite main was found under /etc/apt"
  echo "${found%/}"
}

make_wine() {
  local root=$wine_root partial=$wine_root.partial from
  [ "$(cat "$root/.ormidex-stamp" 2>/dev/null)" != "$wine_recipe" ] || return 0
  [ "$(id -u)" = 0 ] || die "preparing Wine's root needs root: run 'sudo scripts/windows-root.sh wine' once"
  from=$(mirror)
  say "making an i386 root with Wine in $root from $from (about a minute, 1.4 GB)"
  mkdir -p "$(dirname "$root")"
  remove_root "$partial"
  quietly "$cache/debootstrap.log" \
    unshare --mount --propagation private \
    debootstrap --arch=i386 --variant=minbase "$suite" "$partial" "$from"
  copy_proxy_settings "$partial"
  quietly "$cache/wine-install.log" in_root "$partial" sh -c \
    "apt-get update && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $wine_packages && apt-get clean"
  quietly "$cache/wine-prefix.log" in_root "$partial" sh -c "$make_prefix"
  remove_root "$root"
  echo "$wine_recipe" > "$partial/.ormidex-stamp"
  mv "$partial" "$root"
}

# A proxy that the system's own package manager is told to use.
copy_proxy_settings() {
  apt-config dump 2>/dev/null | grep -Ei '^Acquire::https?::proxy ' > "$1/etc/apt/apt.conf.d/90proxy" || true
}

# Never follows a mount: whatever is still mounted stops the removal.
remove_root() {
  [ -e "$1" ] || return 0
  ! grep -q " $1/" /proc/mounts || die "$1 has mounted file systems; unmount them first"
  rm -rf --one-file-system "$1"
}

# apt with lists and sources of its own: the system's are not touched, and they
# seldom list source packages.
private_apt() {
  local state=$1
  shift
  mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
  "$@" -o Dir::Etc::SourceList="$state/sources.list" -o Dir::Etc::SourceParts=/dev/null \
    -o Dir::State::Lists="$state/lists" -o Dir::Cache="$state/cache" -o APT::Sandbox::User=root \
    -o Debug::NoLocking=1
}

fetch_libjpeg_source() {
  local work=$1 signed=/usr/share/keyrings/debian-archive-keyring.gpg
  echo "deb-src [signed-by=$signed] $(mirror) $suite main" > "$work/sources.list"
  private_apt "$work" apt-get update
  (cd "$work" && private_apt "$work" apt-get source --download-only libjpeg-turbo &&
    dpkg-source --no-check -x libjpeg-turbo_*.dsc source)
}

build_libjpeg() {
  local work=$1
  cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$project/cmake/i686-w64-mingw32.cmake" \
    -DCMAKE_C_FLAGS="-march=i686 -DWINVER=0x0500 -D_WIN32_WINNT=0x0500" \
    -DENABLE_SHARED=0 -DWITH_TURBOJPEG=0 -DCMAKE_INSTALL_PREFIX="$work/install"
  ninja -C "$work/build" install
}

make_libjpeg() {
  [ "$(cat "$libjpeg_root/.ormidex-stamp" 2>/dev/null)" != "$libjpeg_recipe" ] || return 0
  local work=$cache/libjpeg-work
  say "building libjpeg for 32-bit Windows into $libjpeg_root"
  rm -rf "$work"
  mkdir -p "$work"
  quietly "$cache/libjpeg.log" fetch_libjpeg_source "$work"
  quietly "$cache/libjpeg.log" build_libjpeg "$work"
  rm -rf "$libjpeg_root"
  mv "$work/install" "$libjpeg_root"
  echo "$libjpeg_recipe" > "$libjpeg_root/.ormidex-stamp"
  rm -rf "$work"
}

mkdir -p "$cache"
# Two builds at once must not make the same thing.
exec 8> "$cache/.lock"
flock 8
case "${1-}" in
  libjpeg) make_libjpeg ;;
  wine) make_wine ;;
  *) die "usage: windows-root.sh libjpeg|wine" ;;
esac
