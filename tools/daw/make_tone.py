#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes an instrument folder with one looped sine of 220 Hz on all keys.

usage: make_tone.py FOLDER
"""
import json
import sys
import wave
from pathlib import Path

import numpy as np

RATE = 44100


def main():
    folder = Path(sys.argv[1])
    samples = 0.25 * np.sin(2 * np.pi * 220 * np.arange(2 * RATE) / RATE)
    with wave.open(str(folder / "tone.wav"), "wb") as file:
        file.setparams((1, 2, RATE, 0, "NONE", ""))
        file.writeframes((samples * 32767).astype("<i2").tobytes())
    settings = {"lowKey": 0, "highKey": 127, "rootKey": 60, "loopMode": 2, "loopStart": RATE, "loopEnd": 2 * RATE,
                "release": 20}
    zone = {"sample": "tone.wav", "settings": settings}
    instrument = {"format": "zarno-instrument", "name": "Tone", "groups": [{"name": "Tone", "zones": [zone]}]}
    (folder / "instrument.json").write_text(json.dumps(instrument))


main()
