#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# dist.sh OUT_FOLDER EXE... : copy the programs, every DLL they need (transitively), the Qt plugins; strip; zip.
set -e
. "$(dirname "$0")/env.sh"
OUT=$1; shift
rm -rf "$OUT"; mkdir -p "$OUT"/{platforms,styles,imageformats}
GCCDIR=$(dirname "$($HOST-gcc-posix -print-file-name=libstdc++-6.dll)")
PATHS=("$PREFIX/bin" "$GCCDIR" /usr/$HOST/lib)
cp "$@" "$OUT/"
for p in platforms/qwindows platforms/qoffscreen platforms/qminimal styles/qwindowsvistastyle imageformats/qico imageformats/qjpeg; do
  [ -e "$PREFIX/plugins/$p.dll" ] && cp "$PREFIX/plugins/$p.dll" "$OUT/${p%/*}/"; done
again=1
while [ $again = 1 ]; do again=0
  for d in $(find "$OUT" -name '*.exe' -o -name '*.dll' | xargs -r -n1 $HOST-objdump -p | awk '/DLL Name:/{print $3}' | sort -u); do
    [ -e "$OUT/$d" ] && continue
    for q in "${PATHS[@]}"; do if [ -e "$q/$d" ]; then cp "$q/$d" "$OUT/"; again=1; break; fi; done   # not found = part of Windows
  done
done
find "$OUT" -name '*.exe' -o -name '*.dll' | xargs $HOST-strip --strip-unneeded
du -sh "$OUT"; (cd "$OUT/.." && rm -f "$(basename "$OUT").zip" && zip -q9r "$(basename "$OUT").zip" "$(basename "$OUT")" && ls -l "$(basename "$OUT").zip")
