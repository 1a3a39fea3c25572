# SPDX-License-Identifier: GPL-3.0-or-later
"""Electric tine piano: a struck steel tine, coupled to a tuned bar, swinging in front of a magnetic pickup.

The tine's fundamental moves its tip across the pickup's field, whose curve adds the overtones; the harder the
blow, the wider the swing and the brighter the bark, which mellows by itself as the tine calms down. The two
bending modes above it (7.1 and 20.3 times the fundamental, far from harmonic) are the bell in the attack.
"""

from dataclasses import dataclass

import numpy as np

import dsp


@dataclass(frozen=True)
class Layer:
    name: str
    low_velocity: int
    high_velocity: int
    swing: float  # tip swing against a hard blow
    bell: float  # second and third mode, against the fundamental's displacement
    glass: float
    contact: float  # seconds the hammer stays at the tine, at middle C
    fast_share: float  # part of the swing that dies away first
    thump: float
    length: float  # sample length against the medium layer's


LAYERS = (
    Layer("soft", 0, 48, 0.20, 0.007, 0.0004, 0.0034, 0.22, 0.022, 0.92),
    Layer("medium", 49, 84, 0.50, 0.012, 0.0016, 0.0022, 0.32, 0.036, 1.00),
    Layer("hard", 85, 127, 1.00, 0.020, 0.0048, 0.0013, 0.42, 0.055, 0.92),
)


def sample_seconds(key, layer):
    return 5.25 * 2.0 ** (-(key - 28) / 33.0) * layer.length


def pickup_voltage(displacement, offset, frequency):
    """Voltage of a tip moving off-centre through a bell-shaped field: the rate of change of the flux."""
    flux = 1.0 / (1.0 + (displacement + offset) ** 2)
    voltage = np.diff(flux, prepend=flux[0])
    return voltage * (-dsp.MODEL_RATE / (2 * np.pi * frequency))


def tine_motion(key, layer, rng, frequency, count):
    """Tip displacement in pickup widths: (fundamental with the tuned bar, bell, glass)."""
    height = (key - 28) / 72.0
    swing = layer.swing * (1.10 - 0.78 * height)
    decay = 2.4 * 2.0 ** (-(key - 28) / 28.0)
    body = layer.fast_share * dsp.decaying_sine(frequency, 0.2 * decay, count)
    body += (1.0 - layer.fast_share) * dsp.decaying_sine(frequency, decay, count)
    # The bar is tuned a hair beside the tine: a slow swirl in the long tone, too weak to be a beat.
    body += 0.05 * dsp.decaying_sine(1.0012 * frequency, 1.4 * decay, count)

    def mode(ratio, amount, mode_decay):
        pitch = frequency * ratio
        if pitch > 15000.0:
            return np.zeros(count)
        amount *= rng.uniform(0.88, 1.12) * min(1.0, (15000.0 - pitch) / 5000.0)
        return amount * dsp.decaying_sine(pitch, mode_decay, count, rng.uniform(-0.5, 0.5))

    relative = 261.6 / frequency
    detail = np.random.default_rng([key, 77])  # the same for every blow at this tine
    bell = mode(7.1 + detail.uniform(-0.1, 0.1), layer.bell, 0.26 * relative**0.45)
    glass = mode(20.3 + detail.uniform(-0.3, 0.3), layer.glass, 0.09 * relative**0.35)
    rise = dsp.soft_start(count, layer.contact * relative**0.4)
    return swing * rise * body, swing * rise * bell, swing * rise * glass


def thump(rng, key, amount, count):
    """Hammer and harp: a few dull modes and a breath of noise, one sound a channel."""
    height = (key - 28) / 72.0
    wood = np.zeros(count)
    for pitch in (86.0, 152.0, 243.0, 395.0):
        pitch *= (1.0 + 0.35 * height) * rng.uniform(0.94, 1.06)
        wood += rng.uniform(0.5, 1.0) * dsp.decaying_sine(pitch, rng.uniform(0.014, 0.032), count)
    wood *= dsp.soft_start(count, 0.0015)
    gain = amount * (1.0 + 1.2 * height)
    noises = [dsp.decaying_noise(rng, 0.007, count, 250.0, 2600.0) for _ in range(2)]
    return [gain * (0.5 * wood + 0.55 * noise * dsp.soft_start(count, 0.001)) for noise in noises]


def tone_stack(s):
    return (
        dsp.high_pass(s, 32.0)
        * dsp.peak(s, 380.0, -2.5, 0.7)
        * dsp.peak(s, 2100.0, 3.0, 0.6)
        * dsp.high_shelf(s, 2600.0, 5.0)
        * dsp.low_pass(s, 11500.0, 0.6)
    )


def left_chain(s):
    return tone_stack(s) * dsp.reflections(s, ((7.1, 0.12), (11.9, -0.09), (18.7, 0.07), (29.3, 0.04)))


def right_chain(s):
    return tone_stack(s) * dsp.reflections(s, ((8.7, -0.11), (13.3, 0.1), (20.9, 0.06), (26.1, -0.05)))


def strike(key, layer, take):
    """One recording: frames x 2, full scale not yet set. `take` numbers the alternatives of one note."""
    rng = np.random.default_rng([key, int(layer.swing * 100), take])
    frequency = dsp.key_frequency(key, (0.35, -0.35)[take % 2])
    count = len(dsp.times(sample_seconds(key, layer)))
    body, bell, glass = tine_motion(key, layer, rng, frequency, count)
    offset = 0.46 + np.random.default_rng([key, 78]).uniform(-0.04, 0.04) + rng.uniform(-0.01, 0.01)
    sides = []
    for side, noise in zip((-1, 1), thump(rng, key, layer.thump, count)):
        motion = body + (1.0 + 0.25 * side) * bell + (1.0 - 0.35 * side) * glass
        voltage = pickup_voltage(motion, offset * (1.0 + 0.07 * side), frequency)
        sides.append(voltage + layer.swing * noise)
    # The bass end of the harp sits a little to the left.
    sound = dsp.place(dsp.finish(sides, (left_chain, right_chain)), 0.09 * (key - 64) / 36.0)
    return dsp.trim_ends(sound, 0.32)
