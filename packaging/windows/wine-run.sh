#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Run a Windows program under Debian's Wine, without a registry prompt or a
# 32-bit warning.  Used as CMAKE_CROSSCOMPILING_EMULATOR and by hand:
#   wine-run.sh prog.exe args...
: "${WINX:=$HOME/.cache/tracksmith-windows}"
: "${WINEPREFIX:=$WINX/wineprefix}"; export WINEPREFIX
: "${WINEDEBUG:=-all}"; export WINEDEBUG
: "${WINEARCH:=win64}"; export WINEARCH
: "${WINEQT_FORCE_STDERR_LOGGING:=1}"; export WINEQT_FORCE_STDERR_LOGGING   # Wine strips QT_*, passes WINEQT_* as QT_*
[ -z "$QT_QPA_PLATFORM" ] || { WINEQT_QPA_PLATFORM=$QT_QPA_PLATFORM; export WINEQT_QPA_PLATFORM; }
: "${WINEQT_QPA_FONTDIR:=Z:\\usr\\share\\fonts\\truetype\\liberation}"; export WINEQT_QPA_FONTDIR
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}"; export WINEDLLOVERRIDES
# DLL search path: the cross prefix and the compiler's own runtime
S=${WINX_SYSROOT:-$WINX/sysroot}
G=$(x86_64-w64-mingw32-gcc-posix -print-file-name=libstdc++-6.dll 2>/dev/null)
w() { printf 'Z:%s' "$1" | tr / '\\'; }
: "${WINEPATH:=$(w "$S/bin");$(w "${G%/*}");$(w /usr/x86_64-w64-mingw32/lib)}"; export WINEPATH
exec /usr/lib/wine/wine64 "$@"
