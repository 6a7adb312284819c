# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by every step.  All paths can be overridden from the environment.
WINX=${WINX:-$HOME/.cache/tracksmith-windows}                 # work folder
RECIPE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
DL=$WINX/dl                             # Debian source files (.dsc + tarballs)
SRC=$WINX/src                           # unpacked, Debian patches applied
BLD=$WINX/build                         # build folders (disposable)
LOG=$WINX/log
PREFIX=${PREFIX:-$WINX/sysroot}         # the cross-built libraries  (cache THIS)
HOST=x86_64-w64-mingw32
JOBS=${JOBS:-2}
NICE=${NICE:-nice -n 15}
TOOLCHAIN=$RECIPE/mingw64-toolchain.cmake
mkdir -p "$DL" "$SRC" "$BLD" "$LOG" "$PREFIX"
export WINX_SYSROOT=$PREFIX
# pkg-config must see the cross prefix only, never /usr/lib/x86_64-linux-gnu
export PKG_CONFIG_LIBDIR=$PREFIX/lib/pkgconfig
unset PKG_CONFIG_PATH PKG_CONFIG_SYSROOT_DIR
export CC=$HOST-gcc-posix CXX=$HOST-g++-posix AR=$HOST-ar RANLIB=$HOST-ranlib \
       STRIP=$HOST-strip WINDRES=$HOST-windres NM=$HOST-nm
srcdir() { local d; d=$(ls -d "$SRC"/$1-[0-9]*/ 2>/dev/null | head -1); echo "${d%/}"; }
step() { # step NAME CMD... : run in a subshell, log, print wall and CPU seconds
  local n=$1 r t; shift
  local TIMEFORMAT='wall %0R s, cpu %0U+%0S s'
  t=$( { time { ( set -e; "$@" ) >"$LOG/$n.log" 2>&1; }; } 2>&1 ); r=$?
  if [ $r = 0 ]; then printf '%-12s ok   %s\n' "$n" "$t"; else printf '%-12s FAIL %s (see %s)\n' "$n" "$t" "$LOG/$n.log"; fi | tee -a "$LOG/times.txt"
  return $r; }
cm() { # cm SRCDIR NAME [cmake args]
  local s=$1 n=$2; shift 2
  rm -rf "$BLD/$n"
  env -u CC -u CXX -u AR -u RANLIB -u STRIP -u WINDRES -u NM \
  cmake -S "$s" -B "$BLD/$n" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$PREFIX" "$@" &&
  $NICE cmake --build "$BLD/$n" -j"$JOBS" && cmake --install "$BLD/$n"; }
