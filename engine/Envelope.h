// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

namespace zarno {

// One-pole segments: each sample moves the envelope by (target - value) x coefficient. Attack and release
// aim past their ends, so that both end in finite time.
inline constexpr float attackTarget = 1.5873016f;
inline constexpr float releaseTarget = -0.5873016f;

inline float approach(float value, float target, float coefficient) {
    return value + (target - value) * coefficient;
}

// What a zone's record and its group's come to at a sample rate.
struct ZoneGains {
    float attackCoefficient = 1.0f;  // per sample; 1 = no attack
    float decayCoefficient = 0.0f;   // per sample; 0 = none: the envelope stays at 1, on purpose, whatever
    float releaseCoefficient = 0.0f; // the sustain level. A release of 0 ends the voice at the first sample.
    float sustainLevel = 1.0f;       // linear
    float gain = 1.0f;               // linear, zone and group
    float leftPan = 1.0f;
    float rightPan = 1.0f;
};

// Pure. group may be null. sampleRate in Hz.
ZoneGains computeZoneGains(const ZoneRecord& zone, const GroupRecord* group, double sampleRate);

// The coefficient of a stolen voice's fade: 0.02242 at 44100 Hz, the same fade in seconds at other rates.
float killCoefficientAt(double sampleRate);

// Pan -1..+1 as the pair of factors used everywhere: the far side is turned down, the near side stays at 1.
struct PanGains {
    float left, right;
};
PanGains panGains(float pan);

} // namespace zarno
