# SPDX-License-Identifier: GPL-3.0-or-later
"""What is compared: the formats, the effects, and the commands that do the same with each program."""
import os
from typing import NamedTuple

ECHO_GAIN, ECHO_DEPTH, ECHO_RATE, ECHO_DELAY = 0.9, 0.4, 0.75, 700  # tracksmith-cli's own defaults
FADES = ("fade-out", "fade-in")
SPLICED = (*FADES, "silence", "trim")
EFFECTS = (*SPLICED, "amplify", "normalize", "echo")
BATCH_EFFECTS = ("fade-out", "amplify", "normalize")


class Format(NamedTuple):
    name: str
    key: str
    extension: str
    ffmpeg: tuple  # options of the encoder, for the source and for what ffmpeg makes of it
    sox: str       # options of sox's encoder; None where it has none


WAV = Format("WAV", "pcm16", "wav", ("-c:a", "pcm_s16le"), "-b 16")
OGG = Format("OGG", "160", "ogg", ("-c:a", "libvorbis", "-b:a", "160k"), "-C 5")
WMA = Format("WMA", "128", "wma", ("-c:a", "wmav2", "-b:a", "128k"), None)


def mp3(rate):
    """CBR of so many kbit/s, or V0 to V9."""
    if rate.upper().startswith("V"):
        quality = rate[1:]
        return Format(f"MP3 V{quality}", f"V{quality}", "mp3",
                      ("-c:a", "libmp3lame", "-q:a", quality), f"-C -{quality}")
    return Format(f"MP3 {rate}k", rate, "mp3", ("-c:a", "libmp3lame", "-b:a", f"{rate}k"), f"-C {rate}")


def format_named(name):
    known = {form.name: form for form in (WAV, OGG, WMA)}
    return known.get(name) or mp3(name.removeprefix("MP3 ").removesuffix("k"))


class Row(NamedTuple):
    form: Format
    minutes: float
    effect: str
    files: int = 1

    @property
    def name(self):
        return f"{self.form.name} {self.minutes:g} min × {self.files} {self.effect}"

    @property
    def seconds(self):
        return self.minutes * 60

    def opponents(self):
        if self.files > 1:
            return ["ffmpeg"]
        found = ["ffmpeg"] + (["sox"] if self.form.sox else [])
        if self.form is WAV:
            found += [f"{tool} + sync" for tool in found]
            found += ["cp + sync"] if self.effect in FADES else []
        return found

    def goal(self, against):
        """How many times faster it shall be, by wall time; None without a goal."""
        spliced = self.effect in SPLICED
        if self.files > 1:
            return 15 if self.effect in FADES else 1.05
        if self.form is WAV:
            return {"sox": 1, "cp + sync": 1 / 1.5}.get(against)
        if against != "ffmpeg":
            return None
        if self.form in (OGG, WMA):
            return 1.3
        if self.effect in FADES:
            return 60 if self.minutes >= 60 else 15
        return 10 if spliced else 1.8


def ours(cli, row, target):
    """tracksmith-cli on a file or a list, in place."""
    options = {
        "fade-out": ("fade-out", "--seconds", 10), "fade-in": ("fade-in", "--seconds", 10),
        "silence": ("silence-front", "--ms", 2000), "trim": ("trim",),
        "amplify": ("amplify-minus", "--value", 10), "normalize": ("normalize", "--value", 100),
        "echo": ("echo",),
    }[row.effect]
    return [cli, "effect", *options, target]


def theirs(against, row, target):
    """The shell script of a row and program on a file; on every file of the folder for a batch."""
    tool, _, sync = against.partition(" + ")
    script = {"ffmpeg": _ffmpeg, "sox": _sox, "cp": _cp}[tool](row)
    if sync:
        script += ' && sync "$1"'
    if row.files == 1:
        return ["sh", "-c", script, "sh", target]
    return ["sh", "-c", f'ls | xargs -P {os.cpu_count()} -I {{}} sh -c "$1" sh {{}}', "sh", script]


def _replaced(command, extension):
    """Scripts write a new file beside the old one and move it over that."""
    new = f'"$1.new.{extension}"'
    return f'{command.format(new=new)} && mv {new} "$1"'


def _echoes(count):
    return [(ECHO_DELAY * k, round(ECHO_DEPTH * ECHO_RATE ** (k - 1), 5)) for k in range(1, count + 1)]


def _ffmpeg(row):
    echoes = _echoes(10)
    before, filters, after = {
        "fade-out": ("", f"afade=t=out:st={row.seconds - 10:g}:d=10", ""),
        "fade-in": ("", "afade=t=in:d=10", ""),
        "silence": ("", "adelay=2s:all=1", ""),
        # Two passes: reversing the sound twice takes more than twice the CPU time, and gigabytes.
        "trim": (_FIND_SILENCE, "atrim=$2:$3,asetpts=PTS-STARTPTS", ""),
        "amplify": ("", "volume=0.9", ""),
        "normalize": (_FIND_PEAK, "volume=${{peak}}dB", ""),
        "echo": ("", f"aecho={ECHO_GAIN}:1:{'|'.join(str(d) for d, _ in echoes)}"
                     f":{'|'.join(str(level) for _, level in echoes)}", f"-t {row.seconds:g} "),
    }[row.effect]
    return before + _replaced(f'ffmpeg -nostdin -v error -y -i "$1" -af "{filters}" '
                              f'{after}{" ".join(row.form.ffmpeg)} {{new}}', row.form.extension)


_FIND_PEAK = ('peak=$(ffmpeg -nostdin -nostats -hide_banner -i "$1" -af volumedetect -f null - 2>&1 | '
              "sed -n 's/.*max_volume: -*\\([0-9.]*\\) dB/\\1/p') && ")
_FIND_SILENCE = ('set -- "$1" $(ffmpeg -nostdin -nostats -hide_banner -i "$1" '
                 '-af silencedetect=noise=-50dB:d=1 -f null - 2>&1 | '
                 "awk '/silence_end/ && !front { front = $5 } /silence_start/ { back = $5 } "
                 "END { print front, back }') && ")


def _sox(row):
    echoes = " ".join(f"{delay} {level}" for delay, level in _echoes(7))  # it has no more than seven
    effect = {
        "fade-out": "fade t 0 -0 10", "fade-in": "fade t 10", "silence": "pad 2",
        "trim": "silence 1 0.1 0.3% reverse silence 1 0.1 0.3% reverse",
        "amplify": "vol 0.9", "normalize": "gain -n",
        "echo": f"echo {ECHO_GAIN} 1 {echoes} trim 0 {row.seconds:g}",
    }[row.effect]
    return _replaced(f'sox "$1" {row.form.sox} {{new}} {effect}', row.form.extension)


def _cp(row):
    return _replaced('cp "$1" {new}', row.form.extension)
