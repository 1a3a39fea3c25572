#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes an instrument folder of the organ in Debian's grandorgue-demo: looped stereo pipes.

usage: make_organ.py PACKAGE.orgue FOLDER [--stream]

One group a stop, each on its own MIDI channel (stops are used again for the channels that are left), so
that a song with many channels plays all of them. Every pipe covers the keys up to halfway to its
neighbours. Needs unzip and wvunpack.
"""
import json
import shutil
import struct
import subprocess
import sys
from pathlib import Path


def unpack(package, folder):
    """The pipes are WavPack files named .wav. Unpacked without --wav, which would drop the loop chunks."""
    packed = folder / "packed"
    packed.mkdir(parents=True, exist_ok=True)
    subprocess.run(["unzip", "-qo", package, "*/*.wav", "-x", "Sounds/*", "-d", packed], check=True)
    for pipe in sorted(packed.glob("*/*.wav")):
        wave = folder / "samples" / pipe.parent.name / pipe.name.replace("#", "s")
        wave.parent.mkdir(parents=True, exist_ok=True)
        packed_name = pipe.with_suffix(".wv")
        pipe.rename(packed_name)
        subprocess.run(["wvunpack", "-q", "-y", "-o", wave, packed_name], check=True)
    shutil.rmtree(packed)


def sampler_chunk(wave):
    """Unity note and its fraction of a semitone, from the wave's "smpl" chunk."""
    data = wave.read_bytes()
    at = 12
    while at + 8 <= len(data):
        name, size = data[at:at + 4], struct.unpack_from("<I", data, at + 4)[0]
        if name == b"smpl":
            note, fraction = struct.unpack_from("<II", data, at + 8 + 12)
            return note & 0x7F, fraction / 2 ** 32
        at += 8 + size
    raise SystemExit(f"{wave}: no smpl chunk")


def zones(folder, stop):
    waves = sorted((folder / "samples" / stop).glob("*.wav"))
    pipes = sorted((*sampler_chunk(wave), wave) for wave in waves)
    made = []
    for i, (note, fraction, wave) in enumerate(pipes):
        low = 0 if i == 0 else (pipes[i - 1][0] + note) // 2 + 1
        high = 127 if i + 1 == len(pipes) else (note + pipes[i + 1][0]) // 2
        made.append({"sample": wave.relative_to(folder).as_posix(),
                     "settings": {"rootKey": note, "lowKey": low, "highKey": high, "highVelocity": 127,
                                  "fineTune": round(-100 * fraction, 3), "release": 250.0, "ignoreVelocity": 1}})
    return made


def main():
    package, folder = sys.argv[1], Path(sys.argv[2])
    unpack(package, folder)
    stops = sorted(path.name for path in (folder / "samples").iterdir())
    groups = [{"name": stops[channel % len(stops)],
               "settings": {"trigger": 1, "channel": channel, "volume": -14.0},
               "zones": zones(folder, stops[channel % len(stops)])} for channel in range(16)]
    instrument = {"format": "zarno-instrument", "version": 215, "storage": "external", "name": "Demo Organ",
                  "title": "Demo Organ", "text": "", "groups": groups,
                  "settings": {"streaming": int("--stream" in sys.argv), "polyphony": 128, "sixteenBit": 1}}
    (folder / "instrument.json").write_text(json.dumps(instrument, indent=1))
    print(f"{len(stops)} stops, {sum(len(group['zones']) for group in groups)} zones")


main()
