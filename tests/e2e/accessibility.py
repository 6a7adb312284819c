# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the main window through AT-SPI: whoever cannot see it must find every control by role and
name, be able to reach those that do something, and press them."""
import sys
import time

import pyatspi

EXPECTED = {
    ("push button", name)
    for name in (
        "Rewind", "Forward", "Load list", "Add file", "Remove", "Move entry up", "Move entry down",
        "Save As list", "Burn to CD", "Play", "Pause", "Stop", "Previous track", "Next track",
        "Options", "Clear list", "Save")
} | {("slider", "Position"), ("slider", "Volume"), ("tree", "Playlist"), ("text", "File being edited")}


def wait_for(condition, seconds=30):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.1)
    return None


def window():
    for application in pyatspi.Registry.getDesktop(0):
        if application and application.name == "tracksmith":
            for frame in application:
                if frame and frame.name == "Tracksmith v5.8":
                    return frame
    return None


def showing(parent):
    for child in parent:
        if child and child.getState().contains(pyatspi.STATE_SHOWING):
            yield child
            if child.getRoleName() != "tree":
                yield from showing(child)


def by_name(frame, role, name):
    for control in showing(frame):
        if (control.getRoleName(), control.name) == (role, name):
            return control
    return None


def enabled(control):
    return control.getState().contains(pyatspi.STATE_ENABLED)


def main():
    frame = wait_for(window)
    if not frame:
        sys.exit("no window of the program is on the accessibility bus")
    wait_for(lambda: by_name(frame, "push button", "Save"))
    found = {(c.getRoleName(), c.name): c for c in showing(frame)}
    errors = [f"no {role} named {name!r}" for role, name in sorted(EXPECTED - set(found))]
    for key in EXPECTED & set(found):
        if not found[key].getState().contains(pyatspi.STATE_FOCUSABLE):
            errors.append(f"{key[0]} {key[1]!r} cannot get the focus")
        if not found[key].description and key[0] == "push button":
            errors.append(f"{key[1]!r} has no description")
    for role, name in found:
        if role in ("push button", "slider", "tree", "text") and not name:
            errors.append(f"a {role} without a name")
    if errors:
        sys.exit("\n".join(errors))

    load = found["push button", "Load list"]
    found["push button", "Play"].queryAction().doAction(0)
    if not wait_for(lambda: not enabled(load)):
        sys.exit("Play, pressed through the accessibility bus, did not lock the list")
    found["push button", "Stop"].queryAction().doAction(0)
    if not wait_for(lambda: enabled(load)):
        sys.exit("Stop, pressed through the accessibility bus, did not unlock the list")


main()
