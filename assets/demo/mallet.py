# SPDX-License-Identifier: GPL-3.0-or-later
"""Mallet articulation: a bar over a resonator tube, its partials cut to 1, 4 and about 10 times the pitch."""

from dataclasses import dataclass

import numpy as np

import dsp


@dataclass(frozen=True)
class Layer:
    name: str
    low_velocity: int
    high_velocity: int
    second: float  # level of the partials against the fundamental
    third: float
    contact: float  # seconds


LAYERS = (
    Layer("yarn", 0, 70, 0.10, 0.010, 0.0026),
    Layer("cord", 71, 127, 0.24, 0.050, 0.0013),
)


def strike(key, layer):
    """One recording: frames x 2, full scale not yet set."""
    rng = np.random.default_rng([key, 500 + layer.high_velocity])
    frequency = dsp.key_frequency(key)
    relative = 261.6 / frequency
    decay = 0.85 * relative**0.38
    count = len(dsp.times(3.0 * decay))
    bar = dsp.decaying_sine(frequency, decay, count)
    # The tube answers a moment after the bar and takes its energy: fuller, then gone a little sooner.
    tube = 0.55 * dsp.decaying_sine(frequency, 0.7 * decay, count, -0.4) * dsp.soft_start(count, 0.03)
    second = layer.second * dsp.decaying_sine(3.984 * frequency, 0.22 * decay, count)
    third = layer.third * dsp.decaying_sine(min(10.1 * frequency, 16000.0), 0.07 * decay, count)
    rise = dsp.soft_start(count, layer.contact * relative**0.3)
    sides = []
    for side in (-1, 1):
        tick = 0.05 * dsp.decaying_noise(rng, 0.004, count, 500.0, 4000.0)
        tone = bar + (1.0 + 0.2 * side) * tube + (1.0 - 0.2 * side) * second + (1.0 + 0.3 * side) * third
        sides.append(rise * (tone + tick))
    sound = dsp.place(dsp.finish(sides, (left_chain, right_chain)), 0.09 * (key - 64) / 36.0)
    return dsp.trim_ends(sound, 0.45)


def left_chain(s):
    return dsp.high_pass(s, 60.0) * dsp.reflections(s, ((9.1, 0.1), (14.3, -0.07), (23.9, 0.05)))


def right_chain(s):
    return dsp.high_pass(s, 60.0) * dsp.reflections(s, ((8.3, -0.09), (15.7, 0.08), (21.7, 0.05)))
