#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Packages (root) and Debian sources.  Idempotent.
set -e
. "$(dirname "$0")/env.sh"
export DEBIAN_FRONTEND=noninteractive
# source packages from the same mirror as the binary ones
if ! apt-get indextargets 2>/dev/null | grep -q 'Created-By: Sources'; then
  if [ -e /etc/apt/sources.list.d/debian.sources ]; then sed -i 's/^Types: deb$/Types: deb deb-src/' /etc/apt/sources.list.d/debian.sources
  else sed -n 's/^deb /deb-src /p' /etc/apt/sources.list > /etc/apt/sources.list.d/tracksmith-src.list; fi
fi
apt-get update
# qt6-base-dev + qt6-base-dev-tools supply the host moc/rcc/uic and Qt6HostInfo of the same 6.4.2
apt-get -o DPkg::Lock::Timeout=600 install -y --no-install-recommends \
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-tools \
  cmake ninja-build make nasm pkg-config dpkg-dev perl \
  qt6-base-dev qt6-base-dev-tools \
  libcli11-dev zip xz-utils
cd "$DL"
for p in qt6-base ffmpeg lame libogg libvorbis taglib libebur128 libsdl2 zlib kissfft; do
  # a package whose small .debian.tar is missing from the mirror still yields its upstream tarball
  ls ${p}_*.orig.tar.* >/dev/null 2>&1 || apt-get source --download-only "$p" || echo "note: $p only partly fetched"
  [ -n "$(srcdir $p)" ] && continue
  if ! ( cd "$SRC" && dpkg-source --no-check --no-copy -x "$DL"/${p}_*.dsc ); then
    echo "note: $p unpacked without Debian's patches"; tar -C "$SRC" -xf "$DL"/${p}_*.orig.tar.*
  fi
done
ls -d "$SRC"/*/
