# SPDX-License-Identifier: GPL-3.0-or-later
"""session_end PROGRAM FOLDER: the end of an X session (XSMP), as the program meets it. This is the
session manager, standing on libSM: it tells the program to save itself because the session ends,
and then to die. FOLDER holds sound files."""
import ctypes
import os
import pathlib
import select
import subprocess
import sys
import time

POINTER, INT, LONG = ctypes.c_void_p, ctypes.c_int, ctypes.c_ulong
ICE = ctypes.CDLL("libICE.so.6")
SM = ctypes.CDLL("libSM.so.6")
LIBC = ctypes.CDLL(None)
LIBC.strdup.restype = POINTER
SAVE_BOTH, INTERACT_ANY = 2, 2  # <X11/SM/SM.h>
PATIENCE = 60

# The order of struct SmsCallbacks (<X11/SM/SMlib.h>): what each is given behind connection and data.
EVENTS = {
    "register": [POINTER],
    "interact": [INT],
    "interacted": [INT],
    "asked": [INT, INT, INT, INT, INT],
    "second phase": [],
    "saved": [INT],
    "closed": [INT, POINTER],
    "properties": [INT, POINTER],
    "removed": [INT, POINTER],
    "wanted": [],
}
seen = []
client = None


def happened(name, connection):
    seen.append(name)
    if name == "register":
        SM.SmsRegisterClientReply(POINTER(connection), POINTER(LIBC.strdup(b"1234")))
    if name == "interact":
        SM.SmsInteract(POINTER(connection))
    if name == "second phase":
        SM.SmsSaveYourselfPhase2(POINTER(connection))
    return 1


def callback(name, arguments):
    kind = ctypes.CFUNCTYPE(INT, POINTER, POINTER, *arguments)
    return kind(lambda connection, _data, *_rest: happened(name, connection))


CALLBACKS = [callback(name, arguments) for name, arguments in EVENTS.items()]


@ctypes.CFUNCTYPE(INT, POINTER, POINTER, ctypes.POINTER(LONG), ctypes.POINTER(POINTER), POINTER)
def new_client(connection, _data, mask, callbacks, _reason):
    global client
    client = connection
    mask[0] = (1 << len(CALLBACKS)) - 1
    for place, function in enumerate(CALLBACKS):
        callbacks[2 * place] = ctypes.cast(function, POINTER)
        callbacks[2 * place + 1] = None
    return 1


@ctypes.CFUNCTYPE(INT, ctypes.c_char_p)
def anybody(_host):
    return 1


@ctypes.CFUNCTYPE(None, POINTER)
def gone(_connection):
    """In the place of libICE's own, which ends this program with the other."""


def listen():
    """The places to connect to, and what SESSION_MANAGER names them by."""
    ICE.IceSetIOErrorHandler(gone)
    error = ctypes.create_string_buffer(256)
    if not SM.SmsInitialize(b"test", b"1", new_client, None, anybody, 256, error):
        sys.exit(f"no session manager: {error.value}")
    count, places = INT(), ctypes.POINTER(POINTER)()
    if not ICE.IceListenForConnections(ctypes.byref(count), ctypes.byref(places), 256, error):
        sys.exit(f"no session manager: {error.value}")
    for place in places[: count.value]:
        ICE.IceSetHostBasedAuthProc(POINTER(place), anybody)
    ICE.IceComposeNetworkIdList.restype = ctypes.c_char_p
    return places[: count.value], ICE.IceComposeNetworkIdList(count, places).decode()


class Manager:
    def __init__(self):
        self.places, self.address = listen()
        self.connections = []
        ICE.IceAcceptConnection.restype = POINTER

    def handle(self):
        """What the program says within a moment."""
        files = {ICE.IceGetListenConnectionNumber(POINTER(place)): place for place in self.places}
        files |= {ICE.IceConnectionNumber(POINTER(one)): one for one in self.connections}
        for ready in select.select(list(files), [], [], 0.1)[0]:
            if files[ready] in self.connections:
                if ICE.IceProcessMessages(POINTER(files[ready]), None, None) != 0:
                    self.connections.remove(files[ready])
                continue
            status = INT()
            made = ICE.IceAcceptConnection(POINTER(files[ready]), ctypes.byref(status))
            if made:
                self.connections.append(made)

    def wait(self, condition, what):
        end = time.monotonic() + PATIENCE
        while not condition():
            if time.monotonic() > end:
                sys.exit(f"{what}; seen: {seen}")
            self.handle()


def main(program, folder):
    songs = sorted(str(song) for song in pathlib.Path(folder).rglob("*.wav"))[:2]
    manager = Manager()
    environment = os.environ | {"SESSION_MANAGER": manager.address}
    # Two entries: a window closed by hand would ask whether to save the list.
    running = subprocess.Popen([program, *songs], env=environment)
    try:
        manager.wait(lambda: client and "register" in seen, "it knows no session")
        found = subprocess.Popen(
            ["timeout", str(PATIENCE), "xdotool", "search", "--sync", "--onlyvisible", "--name", "^Tracksmith v"],
            stdout=subprocess.DEVNULL)
        manager.wait(lambda: found.poll() is not None, "no window")
        left = pathlib.Path(os.environ["XDG_DATA_HOME"], "tracksmith/drive_c/burn_list.dat")
        left.write_text("left over")
        SM.SmsSaveYourself(POINTER(client), SAVE_BOTH, 1, INTERACT_ANY, 0)
        manager.wait(lambda: "saved" in seen, "told that the session ends, it does not answer")
        SM.SmsDie(POINTER(client))
        manager.wait(lambda: running.poll() is not None, "told to die, it goes on")
    finally:
        running.kill()
    if running.wait() != 0:
        sys.exit("it ends with an error")
    if "interact" in seen:
        sys.exit("it wanted to ask something")
    if left.exists():
        sys.exit("it ended without closing its window: the burn list is still there")


main(*sys.argv[1:])
