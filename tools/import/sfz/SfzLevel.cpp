// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/EnvelopeTimes.h"
#include "tools/import/EqualPower.h"
#include "tools/import/sfz/SfzCrossfade.h"
#include "tools/import/sfz/SfzRegion.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace zarno {
namespace {

constexpr double silentDb = -144.0;
constexpr double longestTime = 100000.0; // ms
constexpr double envelopeFall = 70.0;    // dB: what decay and release fall by in the time they say
constexpr double noticeable = 3.0;       // ms
constexpr double middleVelocity = 0.5;

double decibels(double gain) {
    return gain > 0.0 ? std::max(silentDb, 20.0 * std::log10(gain)) : silentDb;
}

// 0..1 at each velocity: straight lines through the points of "amp_velcurve_N", else a square.
std::array<double, 128> velocityCurve(const SfzOpcodes& opcodes) {
    std::map<int, double> points;
    opcodes.forEachNumbered("amp_velcurve_", [&](int velocity, const std::string& value) {
        const auto gain = SfzOpcodes::numberFrom(value);
        if (gain && velocity >= 0 && velocity < 128)
            points.try_emplace(velocity, std::clamp(*gain, 0.0, 1000.0));
    });
    std::array<double, 128> curve;
    for (int v = 0; v < 128; ++v)
        curve[static_cast<std::size_t>(v)] = v * v / (127.0 * 127.0);
    if (points.empty()) return curve;
    points.try_emplace(0, 0.0);
    points.try_emplace(127, 1.0);
    for (auto right = std::next(points.begin()); right != points.end(); ++right) {
        const auto left = std::prev(right);
        for (int v = left->first; v <= right->first; ++v)
            curve[static_cast<std::size_t>(v)] = std::lerp(
                left->second, right->second, double(v - left->first) / (right->first - left->first));
    }
    return curve;
}

class LevelReader {
  public:
    LevelReader(const SfzOpcodes& opcodes, const SfzControl& control, ImportedZone& zone)
        : opcodes_(opcodes)
        , control_(control)
        , zone_(zone) {}

    void volume();
    void sides(bool isStereo);
    void velocities(const SfzVelocityLevel& velocity);
    void envelope();

  private:
    // Seconds, with what velocity adds to them.
    double milliseconds(const std::string& phase, double otherwise) const {
        const double added = middleVelocity * opcodes_.number("ampeg_vel2" + phase, 0.0);
        return std::clamp((opcodes_.number("ampeg_" + phase, otherwise) + added) * 1000.0, 0.0, longestTime);
    }

    const SfzOpcodes& opcodes_;
    const SfzControl& control_;
    ImportedZone& zone_;
};

void LevelReader::volume() {
    for (const char* name : {"volume", "global_volume", "master_volume", "group_volume"})
        zone_.volume += opcodes_.number(name, 0.0);
    for (const char* name : {"amplitude", "global_amplitude", "master_amplitude", "group_amplitude"})
        if (const auto percent = opcodes_.number(name)) zone_.volume += decibels(*percent / 100.0);
    zone_.keyVolume = std::clamp(opcodes_.number("amp_keytrack", 0.0), -96.0, 12.0);
    zone_.keyVolumeCentre = opcodes_.key("amp_keycenter").value_or(60) + control_.noteOffset;
    zone_.volume = std::clamp(zone_.volume, silentDb, 48.0);
}

// Of a recording of two sides "position" and "pan" are both a balance; "width" mixes the sides.
void LevelReader::sides(bool isStereo) {
    Sides sides;
    for (const char* name : {"pan", "position"})
        if (const double value = opcodes_.number(name, 0.0); value != 0.0)
            sides = sides * Sides::ofPan(value / 100.0);
    sides.applyTo(zone_);
    if (isStereo) zone_.shaping.width = std::clamp(opcodes_.number("width", 100.0) / 100.0, -1.0, 1.0);
}

// Tracking mixes full level and the curve, in amplitude; negative tracking mixes in the curve upside down.
void LevelReader::velocities(const SfzVelocityLevel& velocity) {
    const double tracking = std::clamp(opcodes_.number("amp_veltrack", 100.0), -100.0, 100.0) / 100.0;
    const auto curve = velocityCurve(opcodes_);
    const SfzCrossfade fade = sfzCrossfade(opcodes_, "vel", 0);
    ImportedGains gains;
    for (std::size_t v = 0; v < gains.size(); ++v) {
        const double followed =
            tracking >= 0.0 ? 1.0 - tracking * (1.0 - curve[v]) : 1.0 + tracking * curve[v];
        const double level = decibels(followed) + fade.decibelsAt(static_cast<double>(v)) +
                             velocity.decibelsAt(static_cast<int>(v), control_.controllers);
        gains[v] = static_cast<float>(std::clamp(level, silentDb, 48.0));
    }
    zone_.velocityTracking = tracking;
    zone_.velocityGains = std::make_shared<const ImportedGains>(gains);
}

// What the engine's envelope has not, a delay, a hold, a fall in a straight line of dB to a sustain level, is
// done to a copy of the sample.
void LevelReader::envelope() {
    ImportedEnvelope& envelope = zone_.envelope;
    envelope.attack = milliseconds("attack", 0.0);
    envelope.sustain = decibels(std::clamp(opcodes_.number("ampeg_sustain", 100.0), 0.0, 100.0) / 100.0);
    envelope.release = envelope::releaseOfFall(milliseconds("release", 0.001), envelopeFall);

    ImportedLevel level;
    const auto orNone = [](double time) { return time > noticeable ? time : 0.0; };
    const double delay = std::clamp(opcodes_.number("delay", 0.0) * 1000.0, 0.0, longestTime);
    level.silence = orNone(std::min(delay + milliseconds("delay", 0.0), longestTime));
    level.attack = envelope.attack;
    level.hold = orNone(milliseconds("hold", 0.0));
    level.sustain = std::max(envelope.sustain, -96.0);
    const double decay = std::max(envelope::shortestDecay, milliseconds("decay", 0.0));
    if (level.sustain < 0.0) level.slope = envelopeFall / decay;
    constexpr double slowAttack = 200.0, shortDecay = 30.0; // ms: the engine's bends are not heard below
    const bool isSilentSoon = level.sustain <= -90.0;
    const bool isFallTheEngines =
        !level.falls() || (level.hold == 0.0 && (isSilentSoon || decay < shortDecay));
    level.isEngines = isFallTheEngines && level.silence == 0.0 && level.attack < slowAttack;
    if (level.exists()) zone_.shaping.level = level;
    // Without a decay the engine would never come down to the sustain level.
    if (level.falls())
        envelope.decay = std::max(envelope::shortestDecay,
                                  envelope::decayOfFall(envelopeFall / level.engineSlope(), envelopeFall));
}

} // namespace

bool readSfzLevel(const SfzOpcodes& opcodes, const SfzControl& control, const SoundFileInfo& sound,
                  const SfzVelocityLevel& velocity, ImportedZone& zone, ImportReport& report) {
    LevelReader reader(opcodes, control, zone);
    reader.volume();
    if (zone.volume <= silentGain) {
        const std::string until = velocity.silencedBy ? control.controllers.nameOf(*velocity.silencedBy) : "";
        report.add(until.empty() ? "region without level" : "region that is silent until " + until + " moves",
                   "left out", zone.place);
        return false;
    }
    reader.sides(sound.format.channels > 1);
    reader.velocities(velocity);
    reader.envelope();
    return true;
}

} // namespace zarno
