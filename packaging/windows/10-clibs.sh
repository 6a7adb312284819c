#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Small C/C++ libraries.  zlib, ogg, vorbis, lame, ebur128: static; TagLib, SDL2,: DLLs.
. "$(dirname "$0")/env.sh"
auto() { # auto PKG NAME [configure args]  (out of tree, so the source stays clean)
  local s n=$2; s=$(srcdir "$1"); shift 2
  rm -rf "$BLD/$n"; mkdir -p "$BLD/$n"; cd "$BLD/$n"
  "$s/configure" --host=$HOST --prefix="$PREFIX" CFLAGS=-O2 "$@" && $NICE make -j"$JOBS" && make install; }
b_zlib() { # zlib's own Makefile; builds in its source folder, so work on a copy
  rm -rf "$BLD/zlib"; cp -r "$(srcdir zlib)" "$BLD/zlib"; cd "$BLD/zlib"
  unset AR RANLIB; CHOST=$HOST CC=$HOST-gcc-posix AR=$HOST-ar RANLIB=$HOST-ranlib CFLAGS=-O2 ./configure --static --prefix="$PREFIX"
  $NICE make -j"$JOBS" libz.a && make install; }
b_ogg()    { auto libogg ogg --disable-shared --enable-static; }
b_vorbis() { auto libvorbis vorbis --disable-shared --enable-static --disable-oggtest --disable-docs --disable-examples; }
b_lame()   { auto lame lame --disable-shared --enable-static --disable-frontend --disable-decoder --disable-gtktest; }
b_ebur()   { cm "$(srcdir libebur128)" ebur128 -DBUILD_SHARED_LIBS=OFF -DBUILD_STATIC_LIBS=ON -DENABLE_TESTS=OFF -DENABLE_INTERNAL_QUEUE_H=ON; }
b_taglib() { # Debian's patch wants <utf8/checked.h>; the tarball still carries the two headers, as 3rdparty/utf8-cpp
  mkdir -p "$BLD/inc"; ln -sfn "$(srcdir taglib)/3rdparty/utf8-cpp" "$BLD/inc/utf8"
  cm "$(srcdir taglib)" taglib -DBUILD_SHARED_LIBS=ON -DBUILD_TESTS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_BINDINGS=OFF \
     -DCMAKE_CXX_FLAGS="-isystem $BLD/inc"; }
b_sdl2()   { cm "$(srcdir libsdl2)" sdl2 -DSDL_SHARED=ON -DSDL_STATIC=OFF -DSDL_TEST=OFF; }
b_kissfft() { cm "$(srcdir kissfft)" kissfft -DKISSFFT_DATATYPE=float -DKISSFFT_STATIC=ON -DKISSFFT_TEST=OFF -DKISSFFT_TOOLS=OFF -DKISSFFT_OPENMP=OFF; }
# header-only; the host's package serves
b_cli11()  { mkdir -p "$PREFIX/include" "$PREFIX/lib/cmake"; cp -r /usr/include/CLI "$PREFIX/include/"; cp -r /usr/share/cmake/CLI11 "$PREFIX/lib/cmake/"; }
set -e
for p in ${@:-zlib ogg vorbis lame ebur taglib sdl2 kissfft cli11}; do step "$p" b_$p; done
