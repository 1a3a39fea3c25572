// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Tables.h"

#include "engine/VelocityCurves.h"
#include "platform/DefaultArithmetic.h"

#include <array>
#include <cmath>

namespace zarno {
namespace {

constexpr int centRange = 2400;    // +-24 semitones
constexpr int decibelRange = 6000; // 0 .. -60 dB in hundredths

std::array<float, 2 * centRange + 1> makeCentTable() {
    const DefaultArithmetic whateverTheHostUses;
    std::array<float, 2 * centRange + 1> table{};
    for (int cents = -centRange; cents <= centRange; ++cents)
        table[static_cast<std::size_t>(cents + centRange)] = static_cast<float>(std::exp2(cents / 1200.0));
    return table;
}

std::array<float, decibelRange + 1> makeDecibelTable() {
    const DefaultArithmetic whateverTheHostUses;
    std::array<float, decibelRange + 1> table{};
    for (int i = -decibelRange; i <= 0; ++i)
        table[static_cast<std::size_t>(i + decibelRange)] = static_cast<float>(std::pow(10.0, i / 2000.0));
    return table;
}

// Made when the module is loaded, by a thread of the host's.
const auto centTable = makeCentTable();
const auto decibelTable = makeDecibelTable();

} // namespace

float semitoneRatio(float semitones) {
    if (semitones >= -24.0f && semitones <= 24.0f)
        return centTable[static_cast<std::size_t>(static_cast<int>(semitones * 100.0f) + centRange)];
    return static_cast<float>(std::exp2(static_cast<double>(semitones) / 12.0));
}

float decibelGain(float decibels) {
    return static_cast<float>(std::pow(10.0, static_cast<double>(decibels) / 20.0));
}

float tabledDecibelGain(float decibels) {
    if (decibels >= -60.0f && decibels <= 0.0f)
        return decibelTable[static_cast<std::size_t>(static_cast<int>(decibels * 100.0f) + decibelRange)];
    return decibelGain(decibels);
}

float velocityCurveValue(std::int32_t curve, int velocity) {
    const auto index = static_cast<std::size_t>(velocity & 0x7F);
    switch (static_cast<VelocityCurve>(curve)) {
    case VelocityCurve::Normal:
        return normalCurve[index];
    case VelocityCurve::Weak:
        return weakCurve[index];
    case VelocityCurve::Strong:
        break;
    }
    return static_cast<float>(static_cast<double>(index) / 127.0);
}

float velocityGain(const InstrumentSettings& settings, int velocity) {
    const auto floor = static_cast<std::int64_t>(settings.velocityFloor);
    const auto span = std::abs(floor + static_cast<std::int64_t>(settings.velocitySpanOffset));
    const float curve = velocityCurveValue(settings.velocityCurve, velocity);
    return tabledDecibelGain(static_cast<float>(floor) + curve * static_cast<float>(span));
}

float finiteOr(float value, float fallback) {
    return std::isfinite(value) ? value : fallback;
}

} // namespace zarno
