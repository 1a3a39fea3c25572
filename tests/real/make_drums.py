#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes an instrument folder of a drum kit in Debian's hydrogen-drumkits: 48 kHz, 24 bits, velocity layers.

usage: make_drums.py KIT_FOLDER FOLDER

The kit's sounds lie on keys 36, 37, ... in one "Random Robin" group: where layers overlap one of them is
chosen by chance. Hi-hats cut each other through an exclusive id.
"""
import json
import shutil
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

FIRST_KEY = 36


def text(element, name):
    return next((child.text or "" for child in element if child.tag.split("}")[-1] == name), "")


def children(element, name):
    return [child for child in element.iter() if child.tag.split("}")[-1] == name]


def zone(kit, folder, layer, key, exclusive):
    file = text(layer, "filename")
    target = folder / "samples" / file
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(kit / file, target)
    return {"sample": f"samples/{file}",
            "settings": {"rootKey": key, "lowKey": key, "highKey": key, "loopMode": 1, "fixedPitch": 1,
                         "lowVelocity": round(float(text(layer, "min")) * 127),
                         "highVelocity": round(float(text(layer, "max")) * 127), "exclusiveId": exclusive}}


def main():
    kit, folder = Path(sys.argv[1]), Path(sys.argv[2])
    zones = []
    for number, sound in enumerate(children(ElementTree.parse(kit / "drumkit.xml").getroot(), "instrument")):
        exclusive = 1 if "hat" in text(sound, "name").lower() else 0
        zones += [zone(kit, folder, layer, FIRST_KEY + number, exclusive)
                  for layer in children(sound, "layer") if text(layer, "filename").endswith(".wav")]
    instrument = {"format": "zarno-instrument", "version": 215, "storage": "external", "name": kit.name,
                  "title": kit.name, "text": "",
                  "settings": {"streaming": 0, "polyphony": 64, "sixteenBit": 0},
                  "groups": [{"name": "Kit", "settings": {"selectionMode": 2}, "zones": zones}]}
    (folder / "instrument.json").write_text(json.dumps(instrument, indent=1))
    print(f"{len(zones)} layers, {sum(z['settings']['exclusiveId'] for z in zones)} of them exclusive")


main()
