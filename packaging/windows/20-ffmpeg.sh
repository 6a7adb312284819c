#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# FFmpeg 5.1 (Debian source), minimal, audio only, DLLs, LGPL.
set -e
. "$(dirname "$0")/env.sh"
b_ffmpeg() {
  rm -rf "$BLD/ffmpeg"; mkdir -p "$BLD/ffmpeg"; cd "$BLD/ffmpeg"
  env -u CC -u CXX -u AR -u RANLIB -u STRIP -u WINDRES -u NM \
  "$(srcdir ffmpeg)/configure" --prefix="$PREFIX" \
    --enable-cross-compile --arch=x86_64 --target-os=mingw32 --cross-prefix=$HOST- \
    --cc=$HOST-gcc-posix --cxx=$HOST-g++-posix --pkg-config=pkg-config --pkg-config-flags=--static \
    --extra-cflags="-I$PREFIX/include" --extra-ldflags="-L$PREFIX/lib -static-libgcc" \
    --enable-shared --disable-static --disable-programs --enable-ffmpeg --enable-ffprobe --disable-doc --disable-debug \
    --disable-autodetect --enable-w32threads --disable-everything --disable-network \
    --disable-avdevice --disable-swscale --disable-postproc \
    --enable-zlib --enable-libmp3lame --enable-libvorbis \
    --enable-protocol=file,pipe \
    --enable-demuxer=mp3,wav,w64,aiff,au,ogg,asf,flac,mov,aac,caf,pcm_s16le,mpegps,mpegts,matroska,concat \
    --enable-muxer=mp2,mp3,wav,w64,aiff,ogg,asf,flac,ipod,mp4,adts,pcm_s16le,null \
    --enable-parser=mpegaudio,vorbis,flac,aac,opus \
    --enable-decoder=mp1,mp1float,mp2,mp2float,mp3,mp3float,vorbis,wmav1,wmav2,wmapro,wmalossless,flac,aac,alac,opus,'pcm_*','adpcm_*',mjpeg,png \
    --enable-encoder=libmp3lame,mp2,mp2fixed,libvorbis,wmav1,wmav2,flac,aac,alac,'pcm_*',adpcm_ima_wav,adpcm_ms \
    --enable-bsf=mp3_header_decompress,aac_adtstoasc \
    --enable-filter=abuffer,abuffersink,aresample,aformat,anull,anullsrc,anullsink,volume,volumedetect,atrim,afade,acrossfade,amix,amerge,pan,channelmap,channelsplit,atempo,asetrate,asetpts,asetnsamples,silencedetect,silenceremove,loudnorm,ebur128,replaygain,astats,alimiter,acompressor,agate,equalizer,bass,treble,lowpass,highpass,bandpass,superequalizer,aecho,areverse,concat,adelay,apad,dynaudnorm,sine,aevalsrc
  $NICE make -j"$JOBS" && make install
}
step ffmpeg b_ffmpeg
