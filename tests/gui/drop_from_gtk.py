#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drags files from a GTK 3 window onto the program that plays without a host: first some that are refused, then an
instrument, which must load.

usage: drop_from_gtk.py PROGRAM ZARNO    on a screen of its own, see scripts/with-display

Needs python3-gi, gir1.2-gtk-3.0 and xdotool (scripts/setup --pictures).
"""

import json
import os
import subprocess
import sys
import tempfile
import threading
import time
import wave
from pathlib import Path

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

REFUSED = ("sound.wav", "text.pdf", "strings.sfz")


class Source:
    """A window to drag from; what it offers is `uris`."""

    def __init__(self):
        self.uris, self.ended = [], 0
        self.window = Gtk.Window(title="Drag source", default_width=200, default_height=120)
        area = Gtk.EventBox()
        area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
        area.drag_source_add_uri_targets()
        area.connect("drag-data-get", lambda _w, _c, data, _i, _t: data.set_uris(self.uris))
        area.connect("drag-end", self.end)
        self.window.add(area)
        self.window.move(20, 40)
        self.window.show_all()

    def end(self, *_):
        self.ended += 1


def xdotool(*words):
    return subprocess.run(("xdotool", *map(str, words)), check=True, capture_output=True, text=True).stdout.strip()


def pack_instrument(folder, zarno):
    (folder / "src").mkdir()
    with wave.open(str(folder / "src/a.wav"), "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(44100)
        out.writeframes(bytes(2000))
    zone = {"sample": "a.wav", "settings": {"lowKey": 0, "highKey": 127, "highVelocity": 127}}
    model = {"format": "zarno-instrument", "version": 215, "name": "Dropped", "title": "Dropped",
             "groups": [{"name": "one", "zones": [zone]}]}
    (folder / "src/instrument.json").write_text(json.dumps(model))
    subprocess.run((zarno, "pack", folder / "src", folder / "Dropped.zse", "--embed"), check=True)
    return folder / "Dropped.zse"


def drag(source, path, window):
    source.uris = [path.as_uri()]
    before = source.ended
    place = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", window).splitlines())
    x, y = int(place["X"]) + 290, int(place["Y"]) + 60
    xdotool("mousemove", 110, 100, "mousedown", 1)
    for step in range(1, 11):  # GTK begins a drag after some travel
        xdotool("mousemove", 110 + (x - 110) * step // 10, 100 + (y - 100) * step // 10)
        time.sleep(0.05)
    time.sleep(0.3)
    xdotool("mouseup", 1)
    for _ in range(50):
        if source.ended > before:
            return
        time.sleep(0.1)
    sys.exit(f"the drag of {path.name} does not end")


# What is loaded becomes the most recent one in the settings.
def is_recent(instrument, folder):
    for _ in range(50):
        if any(instrument.name in path.read_text(errors="replace") for path in folder.rglob("pluginsettings*")):
            return True
        time.sleep(0.1)
    return False


def play(source, program, zarno, folder, result):
    home = {name: str(folder) for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME")}
    running = subprocess.Popen((program,), env={**os.environ, **home}, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        window = xdotool("search", "--sync", "--onlyvisible", "--pid", running.pid, "--name",
                         "^Zarno Sampler Player$").splitlines()[-1]
        xdotool("windowmove", "--sync", window, 300, 200)
        time.sleep(1.0)
        for name in REFUSED:
            (folder / name).write_text("")
            drag(source, folder / name, window)
        instrument = pack_instrument(folder, zarno)
        for _ in range(3):  # on a busy machine a drag may end before the window has answered it
            drag(source, instrument, window)
            if is_recent(instrument, folder):
                result["loaded"] = True
                break
        xdotool("windowactivate", "--sync", window, "key", "alt+F4")
        running.wait(20)
    finally:
        running.kill()
        GLib.idle_add(Gtk.main_quit)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    source, result = Source(), {}
    with tempfile.TemporaryDirectory() as folder:
        worker = threading.Thread(target=play, args=(source, *sys.argv[1:], Path(folder), result))
        GLib.timeout_add(500, lambda: worker.start())
        Gtk.main()
        worker.join()
    if not result.get("loaded"):
        sys.exit("the instrument that was dropped after refused files did not load")


if __name__ == "__main__":
    main()
