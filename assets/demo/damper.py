# SPDX-License-Identifier: GPL-3.0-or-later
"""The noise of letting go: the damper felt meets the tine, then the key comes back up."""

import numpy as np

import dsp

SECONDS = 0.3


def release_noise(region, take):
    """One recording, frames x 2. `region` 0 (bass) .. 2 (treble) sets how heavy key and damper are."""
    rng = np.random.default_rng([region, take, 900])
    count = len(dsp.times(SECONDS))
    weight = (0.8, 1.0, 1.3)[region]
    key_return = int(rng.uniform(0.030, 0.042) * dsp.MODEL_RATE)
    sides = []
    pitches = weight * np.array([97.0, 171.0, 318.0]) * rng.uniform(0.93, 1.07, 3)
    for _ in range(2):
        felt = dsp.decaying_noise(rng, 0.016, count, 300.0, 1800.0) * dsp.soft_start(count, 0.006)
        knock = sum(dsp.decaying_sine(pitch, 0.021, count) for pitch in pitches) * dsp.soft_start(count, 0.002)
        knock += 0.5 * dsp.decaying_noise(rng, 0.005, count, 200.0, 2400.0)
        late = np.zeros(count)
        late[key_return:] = knock[: count - key_return]
        sides.append(felt + 0.45 * late)
    return dsp.trim_ends(dsp.finish(sides, (chain, chain)), 0.4)


def chain(s):
    return dsp.high_pass(s, 50.0) * dsp.low_pass(s, 5200.0)
