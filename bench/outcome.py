# SPDX-License-Identifier: GPL-3.0-or-later
"""Did a program do what it was asked for? Judged by level and length of the decoded sound, so that
nobody is fast by doing nothing."""
import math
from typing import NamedTuple

from material import SILENCE
from measure import run
from rows import FADES


class Levels(NamedTuple):
    seconds: float
    peak: float  # dB of full scale
    each: list   # RMS of each second, dB

    def middle(self):
        quarter = len(self.each) // 4
        return _mean(self.each[quarter:-quarter])


def _mean(levels):
    return 10 * math.log10(sum(10 ** (level / 10) for level in levels) / len(levels))


def levels(path):
    values = "RMS_level+Peak_level+Number_of_samples"
    text = run("ffmpeg", "-nostdin", "-v", "error", "-i", path, "-af",
               "aresample=44100,asetnsamples=44100:p=0,"
               f"astats=metadata=1:reset=1:measure_perchannel=none:measure_overall={values},"
               "ametadata=print:file=-", "-f", "null", "-").stdout
    found = {name: [float(line.split("=")[1]) for line in text.splitlines()
                    if line.startswith(f"lavfi.astats.Overall.{name}=")]
             for name in values.split("+")}
    each = [max(level, -100.0) for level in found["RMS_level"]]
    return Levels(sum(found["Number_of_samples"]) / 44100, max(found["Peak_level"]), each)


def faults(effect, before, after):
    """Sentences; none when the effect happened, and nothing else."""
    found = []

    def expect(what, value, low, high):
        if not low <= value <= high:
            found.append(f"{what} is {value:.2f}, not {low:.2f} to {high:.2f}")

    longer, slack = {"silence": (2, 0.15), "trim": (-2 * SILENCE, 0.5)}.get(effect, (0, 0.15))
    expect("the length in seconds", after.seconds, before.seconds + longer - slack,
           before.seconds + longer + slack)
    # Encoders turn the sound down by up to 0.3 dB.
    change = {"amplify": 20 * math.log10(0.9), "normalize": -before.peak}.get(effect, 0)
    if effect != "echo":
        expect("the level in dB", after.middle(), before.middle() + change - 0.45,
               before.middle() + change + 0.45)
    if effect in FADES:  # the last second may be a part of one
        faded, other = (-1, 0) if effect == "fade-out" else (0, -2)
        expect("the faded end in dB", after.each[faded], -100, before.each[faded] - 15)
        expect("the other end in dB", after.each[other], before.each[other] - 2,
               before.each[other] + 2)
    if effect == "silence":
        expect("the silence in dB", after.each[0], -100, -60)
    if effect == "trim":
        expect("the first second in dB", after.each[0], -30, 0)
        expect("the last whole second in dB", after.each[-2], -30, 0)
    if effect == "normalize":
        expect("the peak in dB", after.peak, -0.8, 3)
    if effect == "echo":  # it fills the rests
        rests = min(before.each)
        expect("the level of the rests in dB", min(after.each), rests + 10, 0)
    return found
