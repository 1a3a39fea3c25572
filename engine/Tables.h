// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

namespace zarno {

// Pure conversions between musical units and factors. Any thread. Tables and powers are computed in double
// and rounded once to float; the table index is the truncation of a float product.

// 2^(s/12): from a table of whole cents within +-24 semitones, else by the power function.
float semitoneRatio(float semitones);

// 10^(dB/20): from a table of hundredths of a decibel within -60..0 dB, else by the power function.
float tabledDecibelGain(float decibels);

// 10^(dB/20), always by the power function.
float decibelGain(float decibels);

// Value 0..1 of a velocity (0..127) on a curve (VelocityCurve; anything unknown acts as Strong).
float velocityCurveValue(std::int32_t curve, int velocity);

// Level of a velocity: floor + curve(velocity) x |floor + span offset| decibels, as a gain.
float velocityGain(const InstrumentSettings& settings, int velocity);

// A number from a file as it may be used: NaN and infinities take the field's default.
float finiteOr(float value, float fallback);

} // namespace zarno
