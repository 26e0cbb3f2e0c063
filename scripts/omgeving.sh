# Sourced by the commands at the root: what a fresh Debian 12 needs, and the build.
# Sets HUIS (the checkout) and BOUW (the build folder).
set -eu
HUIS=$(cd "$(dirname "$0")" && pwd)
BOUW=${BOUW:-$HUIS/build}

BASIS="g++ cmake ninja-build pkg-config ccache libncurses-dev ncurses-bin libfmt-dev libcli11-dev \
nlohmann-json3-dev libsqlite3-dev libmd-dev tmux cups-client"
PROEF="libgtest-dev libvterm-dev python3"
METING="libbenchmark-dev liblmdb-dev libdb5.3-dev libtdb-dev"
RAFEL="clang libclang-rt-14-dev"

# Installs the Debian packages of the arguments that are missing.
installeer() {
  command -v dpkg-query >/dev/null 2>&1 || return 0
  ontbreekt=
  for pakket in "$@"; do
    dpkg-query -W -f='${Status}' "$pakket" 2>/dev/null | grep -q 'ok installed' || ontbreekt="$ontbreekt $pakket"
  done
  [ -z "$ontbreekt" ] && return 0
  als_root=
  [ "$(id -u)" -eq 0 ] || als_root=sudo
  echo "Installing:$ontbreekt" >&2
  {
    $als_root apt-get update -qq
    $als_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $ontbreekt
  } >&2 </dev/null
}

# Configures once and builds: bouw FOLDER [cmake options...] -- [targets...]
bouw() {
  map=$1
  shift
  opties=
  while [ $# -gt 0 ] && [ "$1" != -- ]; do
    opties="$opties $1"
    shift
  done
  [ $# -gt 0 ] && shift
  cmake -S "$HUIS" -B "$map" -G Ninja $opties >"$map.log" 2>&1 || { cat "$map.log" >&2; return 1; }
  cmake --build "$map" ${1:+--target "$@"} >"$map.log" 2>&1 || { tail -n 60 "$map.log" >&2; return 1; }
}
