#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Listens to the demo instrument with a ruler: what a musician would complain about, found in the waves.

usage: check_demo.py FOLDER

Checks the tuning of every note, full scale, clicks at starts and ends, that stereo sides agree, that every key
and velocity is played by as many takes as promised, and that neither layers nor neighbouring keys jump in level.
Prints each fault; exits with 1 when there is one.
"""

import json
import sys
import wave
from pathlib import Path

import numpy as np

import dsp

TUNING_CENTS = 1.0
LEVEL_STEP = 1.0  # dB
TAKES = {"Tine Piano": 2, "Mallet": 1, "Release Noise": 4}


def read_wave(path):
    with wave.open(str(path)) as source:
        if (source.getframerate(), source.getsampwidth(), source.getnchannels()) != (dsp.RATE, 2, 2):
            raise ValueError(f"{path}: not 44.1 kHz, 16 bit, stereo")
        frames = np.frombuffer(source.readframes(source.getnframes()), "<i2")
    return frames.reshape(-1, 2) / 32768.0


def cents_off(sound, key):
    """Turn of the fundamental's phase between two windows of the sustained part, as a deviation in cents."""
    frequency = dsp.key_frequency(key)
    start, size = int(0.2 * len(sound)), int(0.2 * len(sound))
    time = np.arange(2 * size) / dsp.RATE
    turned = sound[start : start + 2 * size].sum(axis=1) * np.exp(-2j * np.pi * frequency * time)
    first, second = (np.sum(part * np.hanning(size)) for part in (turned[:size], turned[size:]))
    drift = np.angle(second / first) * dsp.RATE / (2 * np.pi * size)
    return 1200.0 * np.log2(1.0 + drift / frequency)


def sound_faults(sound, zone, pitched):
    largest = np.max(np.abs(sound))
    if largest >= 0.999:
        yield "reaches full scale"
    if largest < 0.5:
        yield f"is stored at a peak of {largest:.3f} only"
    if np.max(np.abs(sound[:2])) > 0.004:
        yield "starts with a click"
    if np.max(np.abs(sound[-64:])) > 0.0 or np.max(np.abs(sound[-1000:-64])) > 0.001:
        yield "does not end in silence"
    if zone.get("endFrame") != len(sound) - 1:
        yield f"has {len(sound)} frames but plays to {zone.get('endFrame')}"
    sides = np.sqrt(np.mean(sound**2, axis=0))
    if abs(20 * np.log10(sides[0] / sides[1])) > 3.0:
        yield "leans to one side by more than 3 dB"
    if pitched and abs(cents_off(sound, zone["rootKey"])) > TUNING_CENTS:
        yield f"is {cents_off(sound, zone['rootKey']):+.2f} cents out of tune"


def coverage_faults(group, first_key, last_key):
    zones = [zone["settings"] for zone in group["zones"]]
    for key in range(first_key, last_key + 1):
        for velocity in range(1, 128):
            takes = sum(
                z["lowKey"] <= key <= z["highKey"] and z["lowVelocity"] <= velocity <= z["highVelocity"]
                for z in zones
            )
            if takes != TAKES[group["name"]]:
                yield f"{group['name']}: key {key} velocity {velocity} has {takes} zones"
                return


def level_faults(group, levels):
    """`levels`: (root key, low velocity) -> dB of each take. Layers meet, and so do neighbouring keys."""
    means = {place: np.mean(values) for place, values in levels.items()}
    for (key, velocity), values in levels.items():
        others = [means[place] for place in means if place[0] == key]
        below = [place for place in means if place[1] == velocity and place[0] < key]
        steps = [max(values) - min(values), max(others) - min(others)]
        steps += [abs(means[key, velocity] - means[max(below)])] if below else []
        if max(steps) > LEVEL_STEP:
            yield f"{group['name']}: level jumps by {max(steps):.1f} dB at key {key}, velocity {velocity}"


def group_faults(folder, group):
    pitched = not group["settings"].get("releaseTrigger")
    levels = {}
    for zone in group["zones"]:
        sound, settings = read_wave(folder / zone["sample"]), zone["settings"]
        yield from (f"{zone['sample']} {fault}" for fault in sound_faults(sound, settings, pitched))
        place = settings["rootKey"], settings["lowVelocity"]
        levels.setdefault(place, []).append(dsp.loudness(sound) + settings["volume"])
    yield from coverage_faults(group, group["settings"]["lowKey"], group["settings"]["highKey"])
    if pitched:
        yield from level_faults(group, levels)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    folder = Path(sys.argv[1])
    groups = json.loads((folder / "instrument.json").read_text())["groups"]
    faults = [fault for group in groups for fault in group_faults(folder, group)]
    for fault in faults:
        print(fault)
    zones = sum(len(group["zones"]) for group in groups)
    print(f"{zones} zones in {len(groups)} groups, {len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
