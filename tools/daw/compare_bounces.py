#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares a session's export with what vsthost rendered, both as 32-bit floats: the same bits, or the sum of so many
tracks that play the same song.

usage: compare_bounces.py EXPORT.wav OURS.wav [TRACKS]
"""
import struct
import sys
from pathlib import Path

import numpy as np


def left_side(path):
    data, at = Path(path).read_bytes(), 12
    while data[at:at + 4] != b"data":
        size = struct.unpack_from("<I", data, at + 4)[0]
        at += 8 + size + size % 2
    size = struct.unpack_from("<I", data, at + 4)[0]
    return np.frombuffer(data[at + 8:at + 8 + size], "<f4").reshape(-1, 2)[:, 0]


def main():
    theirs, ours = left_side(sys.argv[1]), left_side(sys.argv[2])
    tracks = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    frames = min(len(theirs), len(ours))
    assert np.abs(ours).max() > 0.05, "ours is silent"
    furthest = np.abs(theirs[:frames] - tracks * ours[:frames]).max()
    assert furthest <= (0 if tracks == 1 else 1e-6 * tracks), f"differs by {furthest}"
    print(f"equal over {frames} frames, {tracks} track(s)")


main()
