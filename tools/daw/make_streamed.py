#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes an instrument folder that streams from disk, with release samples that fade with the notes' lengths and
fewer voices than notes, and a song for it: all that a bounce gets wrong when it goes by the clock.

usage: make_streamed.py FOLDER SONG.mid
"""
import json
import struct
import sys
import wave
from pathlib import Path

import numpy as np

RATE = 44100
TICKS = 1920  # to the quarter note of half a second: 64 of them are 735 samples


def write_wave(path, samples):
    with wave.open(str(path), "wb") as file:
        file.setparams((1, 2, RATE, 0, "NONE", ""))
        file.writeframes((samples * 32767).astype("<i2").tobytes())


def number(value):
    data = bytes([value & 0x7F])
    while value := value >> 7:
        data = bytes([value & 0x7F | 0x80]) + data
    return data


def write_song(path):
    events = []
    for i in range(120):
        key = 48 + i * 7 % 25
        events += [(192 * i, 0x90, key, 60 + i % 60), (192 * i + 64 * (3 + i * 13 % 90), 0x80, key, 0)]
    data, now = b"", 0
    for at, status, key, velocity in sorted(events):
        data += number(at - now) + bytes((status, key, velocity))
        now = at
    data += b"\x00\xff\x2f\x00"
    path.write_bytes(b"MThd" + struct.pack(">IHHH", 6, 0, 1, TICKS) + b"MTrk" + struct.pack(">I", len(data)) + data)


def main():
    folder, song = Path(sys.argv[1]), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    random = np.random.default_rng(1)
    write_wave(folder / "held.wav", 0.02 * np.cumsum(random.uniform(-0.1, 0.1, 20 * RATE)).clip(-1, 1))
    write_wave(folder / "release.wav", 0.02 * random.uniform(-1, 1, RATE))
    held = {"sample": "held.wav", "settings": {"highKey": 127, "rootKey": 60, "release": 300, "endFrame": 20 * RATE}}
    release = {"sample": "release.wav", "settings": {"highKey": 127, "rootKey": 60, "endFrame": RATE}}
    groups = [{"name": "Held", "zones": [held]},
              {"name": "Release", "settings": {"releaseTrigger": 1, "releaseDecayTime": 4000}, "zones": [release]}]
    instrument = {"format": "zarno-instrument", "name": "Streamed", "groups": groups,
                  "settings": {"streaming": 1, "sixteenBit": 1, "polyphony": 24, "streamBufferFrames": 11025}}
    (folder / "instrument.json").write_text(json.dumps(instrument))
    write_song(song)


main()
