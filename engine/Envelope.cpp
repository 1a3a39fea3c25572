// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Envelope.h"

#include "engine/Tables.h"

#include <cmath>

namespace zarno {
namespace {

float onePoleCoefficient(float milliseconds, double sampleRate, float whenInstant) {
    if (!(milliseconds > 0.0f)) return whenInstant;
    return static_cast<float>(1.0 -
                              std::exp(-1.0 / (static_cast<double>(milliseconds) * sampleRate / 1000.0)));
}

constexpr float silentGroupVolume = -30.0f; // dB

} // namespace

ZoneGains computeZoneGains(const ZoneRecord& zone, const GroupRecord* group, double sampleRate) {
    const auto sum = [&](float zoneValue, const RelaxedFloat GroupRecord::*field, float fallback) {
        const float own = finiteOr(zoneValue, fallback);
        return group ? finiteOr(group->*field, 0.0f) + own : own;
    };
    const float attack = sum(zone.attack, &GroupRecord::attack, 0.0f);
    const float decay = sum(zone.decay, &GroupRecord::decay, 0.0f);
    const float sustain = sum(zone.sustain, &GroupRecord::sustain, 0.0f);
    const float release = sum(zone.release, &GroupRecord::release, 100.0f);
    const float volume = sum(zone.volume, &GroupRecord::volume, 0.0f);

    ZoneGains gains;
    gains.attackCoefficient = onePoleCoefficient(attack, sampleRate, 1.0f);
    gains.decayCoefficient = onePoleCoefficient(decay, sampleRate, 0.0f);
    gains.releaseCoefficient = onePoleCoefficient(release, sampleRate, 0.0f);
    gains.sustainLevel = decibelGain(sustain);
    gains.gain = decibelGain(volume);
    if (group && finiteOr(group->volume, 0.0f) <= silentGroupVolume) gains.gain = 0.0f;

    const PanGains pan = panGains(finiteOr(zone.pan, 0.0f));
    gains.leftPan = pan.left;
    gains.rightPan = pan.right;
    return gains;
}

float killCoefficientAt(double sampleRate) {
    constexpr double atReference = 0.02242, referenceRate = 44100.0;
    if (sampleRate == referenceRate) return static_cast<float>(atReference);
    return static_cast<float>(1.0 - std::pow(1.0 - atReference, referenceRate / sampleRate));
}

PanGains panGains(float pan) {
    if (pan > 0.0f) return {std::fabs(1.0f - pan), 1.0f};
    return {1.0f, std::fabs(pan + 1.0f)};
}

} // namespace zarno
