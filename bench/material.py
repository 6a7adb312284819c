# SPDX-License-Identifier: GPL-3.0-or-later
"""Sound that makes encoders work as music does: tones that change with the beat, struck and dying
away, drums, noise that sets in and stops, differing left and right, with a short rest every 16
seconds. The same every time."""
import os

from measure import run

BLOCK = 300      # seconds; longer sound repeats it
PEAK_DB = -6.02  # of the sound: room for the effects that make it louder
SILENCE = 3      # seconds at both ends, where asked for
_REST = "(0.004+0.996*gt(mod(t+4\\,16)\\,1.5))"


def _notes(pitch, tempo, level):
    tone = f"2*PI*{pitch}*t*pow(2\\,mod(floor(t*{tempo})*7\\,12)/12)"
    return f"{level}*exp(-{tempo}*1.5*mod(t\\,1/{tempo}))*(sin({tone})+0.4*sin(3*{tone}))"


def make_music(path, seconds, number=1):
    """A WAV file, stereo, 44.1 kHz, 16 bit. The number varies pitches and noise."""
    shift = 2 ** (number / 12)
    drums = "0.5*exp(-30*mod(t\\,0.5))*(random(0)-0.5)+0.5*exp(-14*mod(t\\,1))*sin(2*PI*55*t)"
    bass = _notes(110 * shift, 2, 0.25)
    left = f"{_REST}*({bass}+{_notes(329.63 * shift, 3, 0.15)}+{drums})"
    right = f"{_REST}*({bass}+{_notes(440 * shift, 4, 0.12)}+{drums})"
    run("ffmpeg", "-nostdin", "-v", "error", "-y", "-filter_complex",
        f"aevalsrc={left}|{right}:s=44100:d={seconds}[tones];"
        f"anoisesrc=c=pink:a=0.06:r=44100:seed={number}:d={seconds},"
        f"volume='{_REST}':eval=frame[noise];"
        "[tones][noise]amix=2:normalize=0,alimiter=limit=0.5:level=0,"
        "aresample=44100:osf=s16:dither_method=triangular",
        "-t", seconds, "-c:a", "pcm_s16le", path)


def source(folder, form, minutes, silent_ends):
    """The file of a format and length, made when it is first asked for."""
    name = f"{minutes:g}-minutes{'-silent-ends' if silent_ends else ''}"
    path = folder / f"{name}-{form.key}.{form.extension}"
    if path.exists():
        return path
    folder.mkdir(parents=True, exist_ok=True)
    wave = folder / f"{name}.wav"
    _make_once(wave, lambda new: _make_wave(folder, new, minutes * 60, silent_ends))
    if form.extension == "wav":
        _make_once(path, lambda new: os.link(wave, new))
    else:
        _make_once(path, lambda new: run("ffmpeg", "-nostdin", "-v", "error", "-y", "-i", wave,
                                         *form.ffmpeg, "-metadata", "title=Song", new))
    return path


def _make_wave(folder, path, seconds, silent_ends):
    block = folder / f"block-{min(seconds, BLOCK):g}.wav"
    _make_once(block, lambda new: make_music(new, min(seconds, BLOCK)))
    ends = ["-af", f"adelay={SILENCE}s:all=1,apad=pad_dur={SILENCE}"] if silent_ends else []
    run("ffmpeg", "-nostdin", "-v", "error", "-y", "-stream_loop", "-1", "-t", seconds, "-i", block,
        *ends, "-c:a", "pcm_s16le", path)


def _make_once(path, make):
    if path.exists():
        return
    part = path.with_name("part-" + path.name)
    part.unlink(missing_ok=True)
    make(part)
    part.replace(path)
