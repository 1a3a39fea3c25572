# SPDX-License-Identifier: GPL-3.0-or-later
"""Signal building blocks shared by the sound models: partials, filters, loudness.

The models work at twice the rate of the finished samples, because the pickup's curve makes overtones that
would otherwise fold back; `finish` filters and halves the rate in one transform.
"""

import numpy as np

RATE = 44100
MODEL_RATE = 2 * RATE


def key_frequency(key, cents=0.0):
    """Hz, equal temperament, A4 (key 69) = 440 Hz."""
    return 440.0 * 2.0 ** ((key - 69 + cents / 100.0) / 12.0)


def times(seconds):
    return np.arange(int(seconds * MODEL_RATE)) / MODEL_RATE


def decaying_sine(frequency, decay, count, phase=0.0):
    """sin with an exponential decay (time constant `decay` seconds), `count` samples at MODEL_RATE.

    A product of a coarse and a fine table of complex powers: exact phase however long the note is, and one
    multiplication a sample in place of a sine.
    """
    block = 1024
    step = (2j * np.pi * frequency - 1.0 / decay) / MODEL_RATE
    fine = np.exp(step * np.arange(block))
    coarse = np.exp(step * block * np.arange(count // block + 1) + 1j * phase)
    wave = np.outer(coarse.imag, fine.real)
    wave += np.outer(coarse.real, fine.imag)
    return wave.reshape(-1)[:count]


def decaying_noise(rng, decay, count, low, high):
    """Band-limited noise burst of about unit peak, `low` and `high` in Hz."""
    length = min(count, int(decay * 9 * MODEL_RATE))
    noise = rng.standard_normal(length) * np.exp(-np.arange(length) / (decay * MODEL_RATE))
    size = fft_size(2 * length)
    s = 2j * np.pi * np.fft.rfftfreq(size, 1.0 / MODEL_RATE)
    shaped = np.fft.irfft(np.fft.rfft(noise, size) * high_pass(s, low) * low_pass(s, high), size)[:length]
    burst = np.zeros(count)
    burst[:length] = shaped / max(1e-9, np.max(np.abs(shaped)))
    return burst


def soft_start(count, seconds):
    """Raised-cosine rise from 0 to 1 within `seconds`."""
    rise = np.ones(count)
    length = min(count, max(2, int(seconds * MODEL_RATE)))
    rise[:length] = 0.5 - 0.5 * np.cos(np.pi * np.arange(length) / length)
    return rise


# Filters, as analogue responses at s = j 2 pi f: minimum phase, so they add nothing ahead of the attack.


def high_pass(s, frequency, q=0.7071):
    w = 2 * np.pi * frequency
    return s * s / (s * s + s * w / q + w * w)


def low_pass(s, frequency, q=0.7071):
    w = 2 * np.pi * frequency
    return w * w / (s * s + s * w / q + w * w)


def peak(s, frequency, decibels, q):
    w = 2 * np.pi * frequency
    a = 10.0 ** (decibels / 40.0)
    return (s * s + s * w * a / q + w * w) / (s * s + s * w / (a * q) + w * w)


def high_shelf(s, frequency, decibels):
    w = 2 * np.pi * frequency
    a = 10.0 ** (decibels / 40.0)
    return (s * a + w) / (s / a + w)


def reflections(s, taps):
    """Direct sound plus early reflections, `taps` = (milliseconds, gain); each loses its top end."""
    response = np.ones_like(s)
    for milliseconds, gain in taps:
        response = response + gain * np.exp(-s * milliseconds / 1000.0) * low_pass(s, 3500.0)
    return response


def fft_size(count):
    """The smallest size of the form m * 2^k (m = 8, 9, 10, 12, 15), even, that holds `count`."""
    return min(m << max(0, (-(-count // m) - 1).bit_length()) for m in (8, 10, 12, 18, 30))


def finish(channels, responses):
    """Filters (one function of s a channel) and halves the rate; returns frames x channels at RATE."""
    count = len(channels[0])
    size = fft_size(count + MODEL_RATE // 8)
    frequencies = np.fft.rfftfreq(size, 1.0 / MODEL_RATE)[: size // 4 + 1]
    s = 2j * np.pi * frequencies
    edge = np.clip((frequencies - 18500.0) / 3000.0, 0.0, 1.0)
    band = 0.25 * (1.0 + np.cos(np.pi * edge))
    halves = [
        np.fft.irfft(np.fft.rfft(channel, size)[: len(s)] * response(s) * band, size // 2)[: count // 2]
        for channel, response in zip(channels, responses)
    ]
    return np.stack(halves, axis=1)


def place(sound, position):
    """Sets the balance of the sides, `position` -1 .. +1: reflections colour a lone high tone's sides unequally."""
    sides = np.sqrt(np.mean(sound**2, axis=0))
    return sound * (np.mean(sides) / sides * (1.0 + position * np.array([-1.0, 1.0])))


def trim_ends(sound, fade_share):
    """A 0.4 ms rise and a fade to exact zero over the last `fade_share` of the sound."""
    count = len(sound)
    rise = 16
    sound[:rise] *= (np.arange(rise) / rise)[:, None]
    fade = int(count * fade_share)
    sound[count - fade :] *= (0.5 + 0.5 * np.cos(np.pi * np.arange(1, fade + 1) / fade))[:, None]
    return sound


def loudness(sound, seconds=0.4):
    """Level in dB of the first `seconds`, weighted as the ear hears it (K weighting)."""
    part = sound[: int(seconds * RATE)]
    size = fft_size(2 * len(part))
    s = 2j * np.pi * np.fft.rfftfreq(size, 1.0 / RATE)
    weight = high_shelf(s, 1700.0, 4.0) * high_pass(s, 38.0, 0.5)
    weighted = np.fft.irfft(np.fft.rfft(part, size, axis=0) * weight[:, None], size, axis=0)[: len(part)]
    return 10.0 * np.log10(np.mean(weighted**2) + 1e-12)
