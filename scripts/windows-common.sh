# Shared by the scripts of the Windows build; to be sourced.
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
if [ "$(id -u)" = 0 ]; then
  cache=${ORMIDEX_CACHE:-/var/cache/ormidex}
else
  cache=${ORMIDEX_CACHE:-$HOME/.cache/ormidex}
fi
wine_root=${ORMIDEX_WINE_ROOT:-$cache/wine-root}
libjpeg_root=$cache/libjpeg-i686

say() { echo "ormidex: $*" >&2; }

die() {
  say "$*"
  exit 1
}

# Runs a command with its output kept in a file, which is shown if it fails.
quietly() {
  local log=$1
  shift
  if ! "$@" > "$log" 2>&1 8>&-; then
    tail -n 40 "$log" >&2
    die "'$1' failed; the whole output is in $log"
  fi
}

# Runs a command inside a root directory, with /proc and /dev of its own. Mounts
# and processes live in name spaces that end with the command, so nothing stays
# mounted and no Wine server stays behind, whatever happens.
in_root() {
  local root=$1
  shift
  unshare --mount --propagation private --pid --fork --kill-child \
    sh -c 'mount -t proc proc "$0/proc" && mount --rbind /dev "$0/dev" && exec chroot "$0" "$@"' \
    "$root" "$@"
}
