# SPDX-License-Identifier: GPL-3.0-or-later
"""What scripts/compare-sfz and scripts/compare-soundfonts share: songs of single notes, sound files, and measures of how
two recordings of a note differ. Sounds are arrays of frames by two sides."""
import ctypes
import os
import struct
import subprocess
from pathlib import Path

import numpy as np

RATE = 44100  # Hz
SILENT = 10 ** (-66 / 20)
ROOT = Path(__file__).resolve().parent.parent
ZARNO = Path(os.environ.get("ZARNO", ROOT / "build/linux/zarno"))


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True)
    if done.returncode:
        raise SystemExit(f"{command[0]}: {done.stderr or done.stdout}")
    return done.stdout


def write_song(path, events, ticks_per_second):
    """One track of (seconds, bytes); the quarter lasts 480 ticks."""

    def variable(value):
        out = [value & 127]
        while value := value >> 7:
            out.insert(0, 128 | value & 127)
        return bytes(out)

    microseconds = round(480e6 / ticks_per_second)
    track, now = b"\0\xff\x51\x03" + microseconds.to_bytes(3, "big"), 0
    for time, data in sorted(events, key=lambda event: event[0]):
        ticks = round(time * ticks_per_second)
        track += variable(ticks - now) + data
        now = ticks
    track += variable(ticks_per_second) + b"\xff\x2f\0"
    path.write_bytes(b"MThd" + struct.pack(">IHHH", 6, 0, 1, 480) + b"MTrk" + struct.pack(">I", len(track)) + track)


class SoundInfo(ctypes.Structure):
    _fields_ = [("frames", ctypes.c_int64), *[(name, ctypes.c_int) for name in
                                             ("samplerate", "channels", "format", "sections", "seekable")]]


def sound(path):
    """Frames of a sound file, by libsndfile."""
    library, info = ctypes.CDLL("libsndfile.so.1"), SoundInfo()
    library.sf_open.restype = ctypes.c_void_p
    library.sf_readf_double.restype = ctypes.c_int64
    handle = library.sf_open(str(path).encode(), 0x10, ctypes.byref(info))
    if not handle:
        raise SystemExit(f"{path}: cannot be read")
    frames = np.zeros((info.frames, info.channels))
    library.sf_readf_double(ctypes.c_void_p(handle), frames.ctypes.data_as(ctypes.c_void_p), ctypes.c_int64(info.frames))
    library.sf_close(ctypes.c_void_p(handle))
    return frames


def correlation(theirs, ours):
    """The best normalised cross-correlation of the whole of `theirs` (mono) with any part of `ours`."""
    energy = np.sum(theirs * theirs)
    if energy == 0 or not ours.any():
        return 0.0
    size = 1 << int(np.ceil(np.log2(len(theirs) + len(ours))))
    lags = len(ours) - len(theirs) + 1
    product = np.fft.irfft(np.conj(np.fft.rfft(theirs, size)) * np.fft.rfft(ours, size), size)[:lags]
    sums = np.concatenate(([0.0], np.cumsum(ours * ours)))
    own = np.maximum(sums[len(theirs):] - sums[:lags], 1e-3 * sums[-1] * len(theirs) / len(ours))
    return float(np.max(np.abs(product) / np.sqrt(energy * own)))


def partials(signal, strongest=None):
    """Frequencies of the partials, by parabolas through peaks; of the strongest ones only when a number is given."""
    size = 1 << 17
    spectrum = np.abs(np.fft.rfft(signal * np.hanning(len(signal)), size)) + 1e-12
    peaks = np.flatnonzero((spectrum[1:-1] > spectrum[:-2]) & (spectrum[1:-1] >= spectrum[2:])) + 1
    peaks = peaks[(peaks > 25 * size / RATE) & (spectrum[peaks] > spectrum.max() * 0.03)]
    if strongest:
        peaks = peaks[np.argsort(spectrum[peaks])[::-1][:strongest]]
    logs = np.log(spectrum)
    found = []
    for peak in peaks:
        y0, y1, y2 = logs[peak - 1:peak + 2]
        found.append((peak + 0.5 * (y0 - y2) / (y0 - 2 * y1 + y2 + 1e-30)) * RATE / size)
    return np.array(found)


def cents(ours, theirs):
    """The middle one of the differences; none when nothing is in tune enough to have a pitch."""
    own = partials(ours)
    differences = []
    for frequency in partials(theirs, 5):
        if len(own):
            difference = 1200 * np.log2(own[np.argmin(np.abs(own - frequency))] / frequency)
            if abs(difference) < 60:
                differences.append(difference)
    return float(np.median(differences)) if differences else None


def crest(signal):
    """The sharpest bend of the curve against those that one frame in a hundred exceeds."""
    bends = np.abs(np.diff(signal, 2))
    common = np.percentile(bends, 99)
    return bends.max() / common if common > 1e-9 else 0


def level(signal):
    return np.sqrt(np.mean(signal ** 2)) if len(signal) else 0.0


def decibels(gain):
    return 20 * np.log10(np.maximum(gain, 1e-6))


def share(values, good):
    return f"{100 * np.mean([bool(good(v)) for v in values]):.0f} %" if len(values) else "–"


def worst(values):
    return f"{max(values, key=abs):+.1f}" if len(values) else "–"
