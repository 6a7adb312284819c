#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# qtbase 6.4.2 (Debian source) for Windows x86-64: Core Gui Widgets Test Concurrent, shared.
#  direct2d must stay ON: with it OFF (and DirectWrite found) QtGui leaves out a class that qwindows.dll
#    links to ("undefined reference to QWindowsDirectWriteFontDatabase").  direct2d1_1=OFF drops only the
#    experimental qdirect2d platform plugin.
#  tabletevent OFF: Debian removed 3rdparty/wintab from the tarball.
set -e
. "$(dirname "$0")/env.sh"
QT=$(srcdir qt6-base)
QTBLD=${QTBLD:-$BLD/qtbase}
qt_configure() {
  rm -rf "$QTBLD"; mkdir -p "$QTBLD"
  env -u CC -u CXX -u AR -u RANLIB -u STRIP -u WINDRES -u NM \
  cmake -S "$QT" -B "$QTBLD" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$PREFIX" \
    -DQT_QMAKE_TARGET_MKSPEC=win32-g++ \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
    -DBUILD_SHARED_LIBS=ON -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_TOOLS_WHEN_CROSSCOMPILING=OFF \
    -DFEATURE_pkg_config=OFF -DFEATURE_network=OFF -DFEATURE_sql=OFF -DFEATURE_dbus=OFF -DFEATURE_xml=OFF \
    -DFEATURE_printsupport=OFF -DFEATURE_icu=OFF -DFEATURE_glib=OFF -DFEATURE_zstd=OFF -DFEATURE_brotli=OFF \
    -DINPUT_opengl=no -DFEATURE_opengl=OFF -DFEATURE_vulkan=OFF -DFEATURE_direct2d=ON -DFEATURE_direct2d1_1=OFF -DFEATURE_tabletevent=OFF \
    -DFEATURE_system_zlib=OFF -DFEATURE_system_png=OFF -DFEATURE_system_jpeg=OFF -DFEATURE_system_freetype=OFF \
    -DFEATURE_system_harfbuzz=OFF -DFEATURE_system_pcre2=OFF -DFEATURE_system_doubleconversion=OFF \
    -DFEATURE_system_libb2=OFF -DFEATURE_system_textmarkdownreader=OFF -DFEATURE_precompile_header=ON "$@"
}
qt_build()   { $NICE cmake --build "$QTBLD" -j"$JOBS"; }
qt_install() { cmake --install "$QTBLD"; }
case "${1:-all}" in
  configure) step qt-configure qt_configure;;
  build) step qt-build qt_build;;
  install) step qt-install qt_install;;
  all) step qt-configure qt_configure; step qt-build qt_build; step qt-install qt_install;;
esac
