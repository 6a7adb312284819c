# SPDX-License-Identifier: GPL-3.0-or-later
"""Wall time, CPU time and peak memory of programs, and the facts about the machine they ran on."""
import ctypes
import os
import pathlib
import platform
import signal
import statistics
import subprocess
import tempfile
import time
from typing import NamedTuple


class Usage(NamedTuple):
    wall: float    # seconds
    cpu: float     # seconds, user and system, of the process and all that it waited for
    memory: float  # MB; of the largest single process


def run(*command):
    """The output of a program that ran to its end; raises where it fails."""
    return subprocess.run([str(part) for part in command], check=True, capture_output=True,
                          text=True, stdin=subprocess.DEVNULL)


def measured(command, folder=None, environment=None):
    """Runs a program. Its output is shown only where it fails, which is an error."""
    with tempfile.TemporaryFile() as errors:
        begun = time.monotonic()
        process = _started(command, folder, environment, errors)
        usage, status = _awaited(process, begun)
        if status != 0:
            errors.seek(0)
            raise RuntimeError(f"{' '.join(map(str, command))}\nended with {status}:\n"
                               + errors.read().decode(errors="replace")[-2000:])
    return usage


def measured_call(work):
    """The programs that a function starts, one after another."""
    begun = time.monotonic()
    child = os.fork()
    if child == 0:
        try:
            os.setsid()
            work()
            os._exit(0)
        finally:
            os._exit(1)
    usage, status = _awaited(child, begun)
    if status != 0:
        raise RuntimeError("the work failed")
    return usage


def _started(command, folder, environment, errors):
    """A process counts the memory of the one that it was forked from as its own peak. So a shell,
    which is small, forks it, and leaves it to us."""
    becomeReaper = 36  # PR_SET_CHILD_SUBREAPER, linux/prctl.h
    if ctypes.CDLL(None, use_errno=True).prctl(becomeReaper, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")
    shell = subprocess.run(["sh", "-c", '"$@" >&2 & echo $!', "sh", *map(str, command)], cwd=folder,
                           env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                           stderr=errors, start_new_session=True, check=True)
    return int(shell.stdout)


def _awaited(process, begun):
    try:
        _, status, used = os.wait4(process, 0)
    except KeyboardInterrupt:
        os.killpg(os.getpgid(process), signal.SIGKILL)
        os.wait4(process, 0)
        raise
    wall = time.monotonic() - begun
    usage = Usage(wall, used.ru_utime + used.ru_stime, used.ru_maxrss / 1024)
    return usage, os.waitstatus_to_exitcode(status)


def gain_of_cores():
    """How much more a process on each core encodes than one alone: the most that whatever encodes
    on all cores can win. Cores that share caches, clock or execution units give less than their
    number."""
    encoder = ["ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
               "anoisesrc=d=120:r=44100:a=0.3,aformat=channel_layouts=stereo", "-c:a", "libmp3lame",
               "-b:a", "192k", "-f", "null", "-"]
    cores = len(os.sched_getaffinity(0))

    def seconds(count):
        begun = time.monotonic()
        running = [subprocess.Popen(encoder) for _ in range(count)]
        if any(process.wait() != 0 for process in running):
            raise RuntimeError("ffmpeg cannot encode MP3")
        return time.monotonic() - begun

    return statistics.median(cores * seconds(1) / seconds(cores) for _ in range(5))


def machine(folder):
    """What a reader has to know to place the figures, as ordered names and values."""
    return {
        "date": time.strftime("%Y-%m-%d %H:%M UTC", time.gmtime()),
        "CPU": _field("/proc/cpuinfo", "model name"),
        "cores": f"{len(os.sched_getaffinity(0))}; an MP3 encoder on each does {gain_of_cores():.2f} "
                 "times the work of one alone",
        "memory": f"{int(_field('/proc/meminfo', 'MemTotal').split()[0]) / 2**20:.1f} GiB",
        "kernel": platform.release(),
        "file system": _said("findmnt", "-n", "-o", "FSTYPE", "-T", folder),
        "ffmpeg": _said("ffmpeg", "-version").split(" ")[2],
        "sox": _said("sox", "--version").split("v")[-1],
        "lame": _version("libmp3lame0"),
        "libvorbis": _version("libvorbisenc2"),
        "load average at the start": "%.2f %.2f %.2f" % os.getloadavg(),
    }


def _field(path, name):
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        key, _, value = line.partition(":")
        if key.strip() == name:
            return value.strip()
    return "unknown"


def _said(*command):
    return run(*command).stdout.splitlines()[0].strip()


def _version(package):
    try:
        return _said("dpkg-query", "-W", "-f", "${Version}", package)
    except (OSError, subprocess.CalledProcessError):
        return "unknown"
