// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

// The engine's envelope moves by one pole: attack and release aim past their ends (1.587 and -0.587) and last
// the time they say, near enough straight lines; decay falls towards the sustain level with that time
// constant. Other formats let decay and release fall in straight lines of dB. All times in ms.
namespace zarno::envelope {

/// The least release: shorter ones click.
inline constexpr double shortestRelease = 5.0;

/// The engine's release for one that falls `fallDb` in `time`: both reach -20 dB together.
inline double releaseOfFall(double time, double fallDb) {
    constexpr double overshoot = 0.5873016;
    const double timeConstants = std::log((1.0 + overshoot) / (0.1 + overshoot)); // until -20 dB
    return std::max(shortestRelease, time * 20.0 / fallDb / timeConstants);
}

/// The engine's decay for one that falls `fallDb` in `time` if no sustain level stops it: exact where the
/// sustain level is silence.
inline double decayOfFall(double time, double fallDb) {
    constexpr double decibelsPerTimeConstant = 8.685889638; // 20 log10(e)
    return time * decibelsPerTimeConstant / fallDb;
}

/// A decay of 0 would mean none at all.
inline constexpr double shortestDecay = 1.0;

} // namespace zarno::envelope
