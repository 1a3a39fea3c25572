#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares two 32-bit float WAV files of one length: largest difference against a tolerance.

usage: compare_waves.py A.wav B.wav TOLERANCE   (0: the same bits)
"""
import struct
import sys

import numpy


def samples(path):
    data = open(path, "rb").read()
    at = 12
    while at + 8 <= len(data):
        name, size = data[at:at + 4], struct.unpack_from("<I", data, at + 4)[0]
        if name == b"data":
            return numpy.frombuffer(data[at + 8:at + 8 + size], dtype="<f4")
        at += 8 + size + size % 2
    raise SystemExit(f"{path}: no data")


a, b, tolerance = samples(sys.argv[1]), samples(sys.argv[2]), float(sys.argv[3])
if a.size == 0 or a.size != b.size:
    raise SystemExit(f"lengths differ: {a.size} and {b.size} samples")
if not numpy.abs(a).max() > 0.01:
    raise SystemExit(f"{sys.argv[1]} is silent")
worst = float(numpy.abs(a.astype(numpy.float64) - b).max())
print(f"peak {numpy.abs(a).max():.3f}, largest difference {worst:.3g}")
sys.exit(0 if worst <= tolerance else 1)
