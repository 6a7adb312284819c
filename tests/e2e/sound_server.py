# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the recordings of sound_server against the decoded files."""
import array
import sys

TOLERANCE = 1e-4  # MP3 decoders may differ in the last bit
QUIET = [0.0, 0.0]


def load(name):
    sound = array.array("f")
    data = open(f"{sys.argv[1]}/{name}", "rb").read()
    sound.frombytes(data[:len(data) // 8 * 8])
    return sound


def check(text, good):
    print(("ok: " if good else "FAILED: ") + text)
    if not good:
        sys.exit(1)


def place(heard, wanted, after=0):
    """Where a stretch of sound lies in the recording, by its very bytes."""
    at = heard.tobytes().find(wanted.tobytes(), after * 8)
    return at // 8 if at >= 0 else None


def frame(sound, number):
    return sound[2 * number:2 * number + 2].tolist()


def follow(heard, start, wanted):
    """Walks through both from the start: (frames found, drop-outs, frames of silence in them). A
    drop-out is silence that stands between one frame and the very next one."""
    at, drops, silence = start, 0, 0
    for number in range(len(wanted) // 2):
        expected, gap = frame(wanted, number), 0
        while True:
            got = frame(heard, at)
            if len(got) == 2 and max(abs(g - e) for g, e in zip(got, expected)) < TOLERANCE:
                break
            if got != QUIET:
                return number, drops, silence
            gap, at = gap + 1, at + 1
        drops, silence, at = drops + (gap > 0), silence + gap, at + 1
    return len(wanted) // 2, drops, silence


def all_heard(what, heard, start, wanted):
    found, drops, silence = follow(heard, start, wanted)
    check(f"{what}: {found} of {len(wanted) // 2} frames in their order; {drops} drop-outs of the "
          f"machine, {silence} frames of silence", found == len(wanted) // 2)


heard, wanted = load("joined"), load("joined.expected")
start = place(heard, wanted[:200])
check("the recording holds the start of the list", start is not None)
all_heard("over three joins", heard, start, wanted)
check("silence before", max(map(abs, heard[:2 * start]), default=0) == 0)

heard, wanted = load("disturbed"), load("disturbed.expected")
first = place(heard, wanted[:200])
check("the recording holds the start", first is not None)
again = place(heard, wanted[2 * 300:2 * 500], first + 44100)  # a seek comes in with a ramp
check("and the start once more, after pause and seek", again is not None)
all_heard("after the seek", heard, again, wanted[2 * 300:])
steps = [abs(heard[i] - heard[i - 2]) for i in range(2 * first + 2, 2 * again)
         if heard[i] != 0 and heard[i - 2] != 0]
own = max(abs(wanted[i] - wanted[i - 2]) for i in range(2, len(wanted)))
check(f"no click at pause, resume and seek: largest step {max(steps):.4f}, in the file {own:.4f}",
      max(steps) <= own + 0.01)
