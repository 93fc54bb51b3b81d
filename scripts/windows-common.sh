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

# Runs a command inside a root directory, with /proc, /dev and /tmp of its own and,
# when $project_mount is set, the project at that place. Mounts and processes live
# in name spaces that end with the command, so nothing stays mounted, no Wine server
# stays behind, whatever happens, and two runs do not meet.
in_root() {
  local root=$1
  shift
  unshare --mount --propagation private --pid --fork --kill-child \
    bash -c 'set -e
      root=$1 project=$2 place=$3
      shift 3
      mount -t proc proc "$root/proc"
      mount --rbind /dev "$root/dev"
      mount -t tmpfs tmpfs "$root/tmp"
      chmod 1777 "$root/tmp"
      [ -z "$place" ] || { mkdir -p "$root$place" && mount --bind "$project" "$root$place"; }
      # Not exec: the first process of the name space must collect orphans.
      chroot "$root" "$@" && exit 0 || exit "$?"' \
    in_root "$root" "$project" "${project_mount-}" "$@"
}
