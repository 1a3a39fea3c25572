#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes "Lantern Tines", the demo instrument: waves and instrument.json in a folder for `zarno pack`.

usage: make_instrument.py FOLDER

Every sound is computed, none is recorded, and the same script always writes the same bytes.
"""

import json
import sys
import wave
from pathlib import Path

import numpy as np

import damper
import dsp
import mallet
import tine_piano

FIRST_KEY, LAST_KEY = 28, 100
TINE_KEYS = range(28, 101, 4)
MALLET_KEYS = range(40, 101, 8)
TAKES = "ab"
TINE_SWITCH, MALLET_SWITCH = 24, 25

NOTE_LOUDNESS = -20.0  # dB, K-weighted, of a note's first 0.4 s at full velocity; the mallet's is the same
BASS_SLOPE = 0.08  # dB a key by which notes below middle C are held back
NOISE_LOUDNESS = -44.0
SAMPLE_PEAK = 0.89  # waves are stored near full scale; the zone's volume sets the level they play at

ROUND_ROBIN, STACK = 1, 0
ALWAYS, NOTE = 0, 2

KNOB = '<knob x="{}" y="{}" width="40" height="40" 2="{}" 16782198="66dfc4c4" 16782197="7fdadadc"/>'
KNOBS = ((75, 123, 101), (148, 124, 102), (222, 123, 103), (309, 124, 104), (393, 124, 2), (477, 124, 3))
# The built-in layout with a keyboard that reaches the keyswitches, and names on its C keys.
LAYOUT = "\n".join((
    '<?xml version="1.0" encoding="UTF-8"?><player width="593" height="242">',
    '<label x="173" y="62" width="286" height="21" 2="1" 16777957="ffffffff"/>',
    '<label x="149" y="82" width="317" height="23" 2="2" 16777957="ffffffff"/>',
    f'<keyboard x="9" y="180" width="574" height="60" 3="1" 4="{TINE_SWITCH},{LAST_KEY}"/>',
    *(KNOB.format(*knob) for knob in KNOBS),
    '<button x="471" y="82" width="24" height="22" 2="9" 1="0"/>',
    "</player>",
))


class Progress:
    """A bar on a terminal; in a log, a line every tenth of the way."""

    def __init__(self, total):
        self.total, self.done = total, 0

    def step(self, label):
        tenth = 10 * self.done // self.total
        self.done += 1
        percent = f"{100 * self.done // self.total:3d} %"
        if sys.stdout.isatty():
            bar = "#" * (30 * self.done // self.total)
            end = "\n" if self.done == self.total else ""
            print(f"\r[{bar:<30}] {percent}  {label:<28}", end=end, flush=True)
        elif 10 * self.done // self.total > tenth:
            print(f"{percent}  {label}", flush=True)


def write_wave(path, sound, seed):
    """44.1 kHz, 16 bit, stereo. Dithered but for the last 64 frames, which are silence."""
    rng = np.random.default_rng(seed)
    dither = rng.random(sound.shape) - rng.random(sound.shape)
    dither[0] = 0.0
    dither[-64:] = 0.0
    scaled = np.clip(np.round(sound * 32767.0 + dither), -32768, 32767)
    scaled[-64:] = 0
    with wave.open(str(path), "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(dsp.RATE)
        out.writeframes(scaled.astype("<i2").tobytes())


def key_ranges(keys):
    """(root, low, high) of each sampled key: halfway to its neighbours, the ends to the keyboard's ends."""
    keys = list(keys)
    for index, key in enumerate(keys):
        low = FIRST_KEY if index == 0 else (keys[index - 1] + key) // 2 + 1
        high = LAST_KEY if index == len(keys) - 1 else (key + keys[index + 1]) // 2
        yield key, low, high


def damping_time(key):
    """ms until a damped note is silent: heavy bass tines take longer to calm."""
    return round(180.0 * 2.0 ** (-(key - 60) / 60.0), 1)


class Builder:
    def __init__(self, folder, progress):
        self.folder, self.progress, self.seed = folder, progress, 0

    def zone(self, name, sound, target_loudness, settings):
        """Stores a sound at full level and returns the zone that plays it at `target_loudness`."""
        gain = SAMPLE_PEAK / np.max(np.abs(sound))
        volume = target_loudness - dsp.loudness(sound * gain)
        self.seed += 1
        write_wave(self.folder / name, sound * gain, self.seed)
        self.progress.step(Path(name).stem)
        return {
            "sample": name,
            "settings": {"endFrame": len(sound) - 1, "volume": round(volume, 2), **settings},
        }

    def note_zone(self, name, sound, layer, key_range):
        root, low, high = key_range
        velocities = {"lowVelocity": layer.low_velocity, "highVelocity": layer.high_velocity}
        keys = {"rootKey": root, "lowKey": low, "highKey": high}
        target = NOTE_LOUDNESS - BASS_SLOPE * max(0, 60 - root)
        return self.zone(
            name, sound, target, {**keys, **velocities, "release": damping_time(root)}
        )

    def tine_group(self):
        zones = []
        for key_range in key_ranges(TINE_KEYS):
            for layer in tine_piano.LAYERS:
                for take, letter in enumerate(TAKES):
                    name = f"samples/tine_{key_range[0]:03d}_{layer.name}_{letter}.wav"
                    sound = tine_piano.strike(key_range[0], layer, take)
                    zones.append(self.note_zone(name, sound, layer, key_range))
        return note_group("Tine Piano", TINE_SWITCH, ROUND_ROBIN, zones)

    def mallet_group(self):
        zones = []
        for key_range in key_ranges(MALLET_KEYS):
            for layer in mallet.LAYERS:
                name = f"samples/mallet_{key_range[0]:03d}_{layer.name}.wav"
                sound = mallet.strike(key_range[0], layer)
                zones.append(self.note_zone(name, sound, layer, key_range))
        return note_group("Mallet", MALLET_SWITCH, STACK, zones)

    def release_group(self):
        """After the keyswitched groups on purpose: a keyswitch drops every group before the one it chooses,
        while "Always" groups behind it come back in the same pass."""
        zones = []
        for region, (low, high) in enumerate(((FIRST_KEY, 51), (52, 75), (76, LAST_KEY))):
            for take in range(4):
                name = f"samples/damper_{region}_{take}.wav"
                settings = {
                    "rootKey": low,
                    "lowKey": low,
                    "highKey": high,
                    "lowVelocity": 1,  # a note that has rung out is damped without a noise
                    "highVelocity": 127,
                    "fixedPitch": 1,
                    "release": 50.0,
                }
                zones.append(self.zone(name, damper.release_noise(region, take), NOISE_LOUDNESS, settings))
        settings = {
            "trigger": ALWAYS,
            "selectionMode": ROUND_ROBIN,
            "releaseTrigger": 1,
            "releaseDecayTime": 5000.0,
            "lowKey": FIRST_KEY,
            "highKey": LAST_KEY,
        }
        return {"name": "Release Noise", "settings": settings, "zones": zones}


def note_group(name, keyswitch, selection, zones):
    settings = {
        "trigger": NOTE,
        "keyswitchNote": keyswitch,
        "selectionMode": selection,
        "lowKey": FIRST_KEY,
        "highKey": LAST_KEY,
    }
    return {"name": name, "settings": settings, "zones": zones}


def instrument(groups):
    return {
        "format": "zarno-instrument",
        "version": 215,
        "storage": "external",
        "name": "Lantern Tines",
        "title": "Lantern Tines",
        "text": "Electric tine piano. Keyswitches: C1 tine piano, C#1 mallet.",
        "settings": {
            "streaming": 0,
            "sixteenBit": 1,
            "polyphony": 64,
            "quality": 2,
            "velocityCurve": 0,
            "velocityFloor": -40,
            "volume": 2.0,
            "lfoDestination": 0,  # Pan and Expression overwrite what the panel and the pedal set
            "reverbSend": 0.2,
        },
        "layout": "layout.xml",
        "groups": groups,
    }


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    folder = Path(sys.argv[1])
    for old in folder.glob("samples/*.wav"):
        old.unlink()
    (folder / "samples").mkdir(parents=True, exist_ok=True)
    notes = len(TINE_KEYS) * len(tine_piano.LAYERS) * len(TAKES)
    progress = Progress(notes + len(MALLET_KEYS) * len(mallet.LAYERS) + 12)
    builder = Builder(folder, progress)
    groups = [builder.tine_group(), builder.mallet_group(), builder.release_group()]
    (folder / "layout.xml").write_text(LAYOUT + "\n")
    (folder / "instrument.json").write_text(json.dumps(instrument(groups), indent=1) + "\n")
    size = sum(path.stat().st_size for path in folder.glob("samples/*.wav"))
    print(f"{folder}: {progress.total} samples, {size / 1e6:.1f} MB")


if __name__ == "__main__":
    main()
