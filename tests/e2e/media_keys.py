# SPDX-License-Identifier: GPL-3.0-or-later
"""Works the program through MPRIS, as a desktop's media keys and panels do."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.parse

import mutagen.id3
from gi.repository import Gio, GLib

NAME = "org.mpris.MediaPlayer2.tracksmith"
PLAYER = "org.mpris.MediaPlayer2.Player"
PROPERTIES = "org.freedesktop.DBus.Properties"
TITLE = "Tön – 音"
COVER = b"\x89PNG\r\n\x1a\n" + bytes(range(256)) * 8
BUS = Gio.bus_get_sync(Gio.BusType.SESSION)


def wait_for(condition, what, seconds=30):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        if condition():
            return
        time.sleep(0.02)
    sys.exit(f"this did not come true: {what}")


def expect(condition, what):
    if not condition:
        sys.exit(f"this is not true: {what}")


def call(name, interface, method, arguments=None):
    answer = BUS.call_sync(name, "/org/mpris/MediaPlayer2", interface, method, arguments, None,
                           Gio.DBusCallFlags.NONE, 10000, None)
    return answer.unpack()


def owned(name):
    return BUS.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "NameHasOwner", GLib.Variant("(s)", (name,)), None,
                         Gio.DBusCallFlags.NONE, -1, None).unpack()[0]


def press(method, *arguments):
    signature = {"Seek": "(x)", "SetPosition": "(ox)", "OpenUri": "(s)"}.get(method)
    call(NAME, PLAYER, method, GLib.Variant(signature, arguments) if signature else None)


def get(name, interface=PLAYER):
    return call(NAME, PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name)))[0]


def put(name, value):
    call(NAME, PROPERTIES, "Set", GLib.Variant("(ssv)", (PLAYER, name, value)))


class Heard:
    """The newest of what the signals told."""

    def __init__(self):
        self.told, self.seeks = {}, []
        for interface, signal in ((PROPERTIES, "PropertiesChanged"), (PLAYER, "Seeked")):
            BUS.signal_subscribe(NAME, interface, signal, "/org/mpris/MediaPlayer2", None,
                                 Gio.DBusSignalFlags.NONE, self.hear)

    def hear(self, _bus, _sender, _path, _interface, signal, arguments):
        if signal == "Seeked":
            self.seeks.append(arguments.unpack()[0])
        else:
            self.told.update(arguments.unpack()[1])

    def status(self, wanted):
        wait_for(lambda: self.told.get("PlaybackStatus") == wanted, f"the signal tells of {wanted}")
        expect(get("PlaybackStatus") == wanted, f"the status is {wanted}")

    def title(self, wanted):
        wait_for(lambda: self.told.get("Metadata", {}).get("xesam:title") == wanted,
                 f"the signal tells of {wanted}", 10)


def plays_and_moves_on(songs):
    heard = Heard()
    wait_for(lambda: get("CanPlay"), "the list is there")
    expect(get("PlaybackStatus") == "Stopped", "nothing plays at the start")
    expect("xesam:title" not in get("Metadata"), "nothing is on the deck at the start")
    press("Pause")
    press("Stop")
    expect(get("PlaybackStatus") == "Stopped", "Pause starts nothing")
    press("PlayPause")
    heard.status("Playing")
    heard.title(TITLE)
    data = get("Metadata")
    expect(data["xesam:url"] == songs[0].as_uri(), f"the address is that of the file, {data}")
    expect(abs(data["mpris:length"] - 20_000_000) < 200_000, f"the length is 20 s, {data}")
    wait_for(lambda: "mpris:artUrl" in heard.told.get("Metadata", {}), "the cover is told")
    data = get("Metadata")
    expect(data["xesam:artist"] == ["Eine", "Zweite"] and data["xesam:album"] == "Ålbum",
           f"artists and album are told, {data}")
    cover = urllib.parse.unquote(urllib.parse.urlparse(data["mpris:artUrl"]).path)
    expect(pathlib.Path(cover).read_bytes() == COVER, "the cover is the file's")
    expect(not get("CanGoPrevious") and get("CanGoNext"), "the first entry has a next one only")
    wait_for(lambda: get("Position") > 0, "the position moves")
    press("Next")
    heard.title(songs[1].name)
    expect(get("CanGoPrevious") and not get("CanGoNext"), "the last entry has a previous one only")
    press("Previous")
    heard.title(TITLE)


def pauses_and_seeks():
    heard = Heard()
    press("Pause")
    heard.status("Paused")
    track = get("Metadata")["mpris:trackid"]
    press("SetPosition", track, 10_000_000)
    wait_for(lambda: heard.seeks, "Seeked is told")
    expect(abs(get("Position") - 10_000_000) < 50_000, "SetPosition goes to the place")
    for volume in (0.8, 0.9):  # what moves in the window is told by its clock, jumps among it
        put("Volume", GLib.Variant("d", volume))
        wait_for(lambda: abs(heard.told.get("Volume", 1) - volume) < 0.01, "the clock ticks")
    expect(len(heard.seeks) == 1, f"one seek is told once, not {heard.seeks}")
    press("SetPosition", "/org/tracksmith/track/99", 1_000_000)
    press("SetPosition", track, 30_000_000)
    expect(abs(get("Position") - 10_000_000) < 50_000, "another track's place changes nothing")
    press("Seek", -4_000_000)
    expect(abs(get("Position") - 6_000_000) < 50_000, "Seek goes back")
    press("Seek", -2**63)
    expect(get("Position") == 0, "Seek goes back to the start at most")
    press("Play")
    heard.status("Playing")
    put("Volume", GLib.Variant("d", 0.5))
    wait_for(lambda: abs(heard.told.get("Volume", 1) - 0.5) < 0.01, "the volume is told")
    for odd, value in ((7.0, 1), (-1.0, 0), (float("nan"), 0)):
        put("Volume", GLib.Variant("d", odd))
        expect(get("Volume") == value, f"the volume {odd} is {value}")
    press("Seek", 60_000_000)
    wait_for(lambda: get("Metadata")["mpris:trackid"] != track, "a seek past the end is Next")
    press("Stop")
    heard.status("Stopped")
    expect(not get("CanSeek"), "what is stopped cannot be sought in")
    press("Play")
    heard.status("Playing")
    wait_for(lambda: get("CanSeek"), "what plays can be sought in")
    put("Rate", GLib.Variant("d", 1.0))
    put("Rate", GLib.Variant("d", 2.0))
    expect(get("Rate") == 1 and get("PlaybackStatus") == "Playing", "there is one rate")
    put("Rate", GLib.Variant("d", 0.0))
    heard.status("Paused")


def opens_what_it_is_given(song):
    heard = Heard()
    press("OpenUri", "http://127.0.0.1:9/x.mp3")
    press("OpenUri", song.as_uri())
    heard.title(song.name)
    heard.status("Playing")
    expect(get("Metadata")["xesam:url"] == song.as_uri(), "the file given plays")
    expect("xesam:album" not in get("Metadata"), "nothing of another file is told of it")


def waits_for_an_answer():
    press("Stop")
    call(NAME, "org.mpris.MediaPlayer2", "Quit")
    wait_for(lambda: not get("CanPlay"), "the question whether to save keeps the deck away")
    for method in ("Play", "PlayPause"):
        press(method)
    put("Volume", GLib.Variant("d", 0.25))
    expect(get("PlaybackStatus") == "Stopped" and get("Volume") != 0.25, "the keys do nothing")


def main(program, fixtures):
    folder = pathlib.Path(tempfile.mkdtemp())
    songs = [folder / "a – ß.mp3", folder / "b.wav"]
    shutil.copy(pathlib.Path(fixtures) / "music.mp3", songs[0])
    shutil.copy(pathlib.Path(fixtures) / "music.wav", songs[1])
    mutagen.id3.ID3().save(songs[0])
    tags = mutagen.id3.ID3(songs[0])
    tags.add(mutagen.id3.TIT2(text=TITLE))
    tags.add(mutagen.id3.TPE1(text=["Eine", "Zweite"]))
    tags.add(mutagen.id3.TALB(text="Ålbum"))
    tags.add(mutagen.id3.APIC(mime="image/jpeg", type=0, data=b"another"))
    tags.add(mutagen.id3.APIC(mime="image/png", type=3, desc="front", data=COVER))
    tags.save()
    third = folder / "c – other.wav"
    shutil.copy(pathlib.Path(fixtures) / "music.wav", third)
    first = subprocess.Popen([program, *songs])
    wait_for(lambda: owned(NAME), "the program is on the bus")
    expect(get("Identity", "org.mpris.MediaPlayer2") == "Tracksmith", "it says who it is")
    plays_and_moves_on(songs)
    pauses_and_seeks()
    opens_what_it_is_given(third)

    second = subprocess.Popen([program])
    name = f"{NAME}.instance{second.pid}"
    wait_for(lambda: owned(name), "a second one has a name of its own")
    call(name, "org.mpris.MediaPlayer2", "Raise")
    call(name, "org.mpris.MediaPlayer2", "Quit")
    wait_for(lambda: second.poll() is not None, "Quit ends the program")
    expect(second.returncode == 0 and not owned(name), "it ends in order")
    waits_for_an_answer()
    first.terminate()
    first.wait(30)

    nowhere = dict(os.environ, DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere")
    alone = subprocess.Popen([program, *songs], env=nowhere, stderr=subprocess.PIPE)
    tree = lambda: subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True).stdout
    wait_for(lambda: b"Tracksmith v5.8" in tree(), "without a bus the window comes all the same")
    expect(alone.poll() is None and not owned(NAME), "it runs, and is not on the bus")
    alone.terminate()
    expect(alone.communicate(timeout=30)[1] == b"", "it has nothing to complain of")
    shutil.rmtree(folder)


main(*sys.argv[1:])
