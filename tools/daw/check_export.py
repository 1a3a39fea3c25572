#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks a session's export: four notes a quarter of a second each, at their pitches, on the left side alone.

usage: check_export.py WAVE
"""
import sys
import wave

import numpy as np

with wave.open(sys.argv[1]) as file:
    rate = file.getframerate()
    frames = np.frombuffer(file.readframes(file.getnframes()), "<i2").reshape(-1, 2) / 32768
left, right = frames[:, 0], frames[:, 1]
for index, key in enumerate((60, 64, 67, 72)):
    note = left[int((index / 4 + 0.05) * rate):int((index / 4 + 0.2) * rate)]
    spectrum = np.abs(np.fft.rfft(note * np.hanning(len(note)), 8 * len(note)))
    found = spectrum.argmax() * rate / (8 * len(note))
    cents = 1200 * np.log2(found / (220 * 2 ** ((key - 60) / 12)))
    assert abs(cents) < 20, f"note {index + 1}: {found:.1f} Hz"
    assert np.abs(note).max() > 0.02, f"note {index + 1} is silent"
assert np.abs(left[int(1.5 * rate):]).max() < 1e-3, "it goes on behind the last note"
assert np.abs(right).max() < 1e-3, "the right side sounds: the pan was not kept"  # dither is below that
print(f"as saved: four notes on the left, peak {np.abs(left).max():.3f}, right {np.abs(right).max():.5f}")
