#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts a region on every MIDI track of an Ardour session that was saved without one: four notes, or a MIDI file of
1920 ticks to the quarter note, of up to 20 seconds.

usage: ardour_song.py SESSION_FOLDER [SONG.mid]
"""
import struct
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

TICKS = 1920  # Ardour's own to the quarter note


def song():
    events = b""
    for key in (60, 64, 67, 72):
        events += b"\x00\x90" + bytes((key, 100)) + b"\x87\x40\x80" + bytes((key, 0))  # 960 ticks
    events += b"\x00\xff\x2f\x00"
    return b"MThd" + struct.pack(">IHHH", 6, 0, 1, TICKS) + b"MTrk" + struct.pack(">I", len(events)) + events


def main():
    folder = Path(sys.argv[1])
    path = folder / "song.ardour"
    notes = Path(sys.argv[2]).read_bytes() if len(sys.argv) > 2 else song()
    quarters = 40 if len(sys.argv) > 2 else 4
    (folder / "interchange" / "song" / "midifiles" / "notes.mid").write_bytes(notes)
    tree = ElementTree.parse(path)
    root = tree.getroot()
    source, region = "900001", "900002"
    length = f"b{quarters * TICKS}@b0"
    ElementTree.SubElement(root.find("Sources"), "Source", name="notes.mid", type="midi", flags="", id=source)
    at = dict(name="notes", type="midi", start="b0", length=length, channels="1", opaque="1", muted="0")
    at.update({"source-0": source, "master-source-0": source, "first-edit": "nothing"})
    ElementTree.SubElement(root.find("Regions"), "Region", at, id=region, **{"whole-file": "1"})
    for number, playlist in enumerate(root.findall("Playlists/Playlist[@type='midi']")):
        ElementTree.SubElement(playlist, "Region", at, id=str(int(region) + 1 + number))
    root.set("id-counter", "1000000")
    tree.write(path, encoding="UTF-8", xml_declaration=True)


main()
