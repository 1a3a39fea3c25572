// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontShaping.h"

#include "tools/import/EnvelopeTimes.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr double envelopeRange = 96.0; // dB from full level to silence
constexpr double noticeable = 5.0;     // ms
constexpr double keyZero = 8.1758;     // Hz of 0 cents
constexpr int openFilter = 13500;      // absolute cents

double milliseconds(int timecents) {
    return timecents <= -12000 ? 1.0 : 1000.0 * std::exp2(std::min(timecents, 8000) / 1200.0);
}

// A time that, above or below key 60, is longer or shorter.
double followedTime(const SoundFontVoice& voice, Generator time, Generator byKey) {
    const int middleKey = (voice.lowKey + voice.highKey) / 2;
    return milliseconds(voice[time] + (60 - middleKey) * voice[byKey]);
}

double sustainOf(const SoundFontVoice& voice) {
    return -std::clamp(voice[Generator::VolEnvSustain] / 1000.0, 0.0, 1.0) * envelopeRange;
}

double orNone(double time) {
    return time > noticeable ? time : 0.0;
}

ImportedLevel levelOf(const SoundFontVoice& voice) {
    constexpr double slowAttack = 200.0; // ms; the engine's bends up by 4 dB, most of all at the beginning
    ImportedLevel level;
    level.silence = orNone(milliseconds(voice[Generator::VolEnvDelay]));
    level.attack = milliseconds(voice[Generator::VolEnvAttack]);
    level.hold = orNone(followedTime(voice, Generator::VolEnvHold, Generator::KeyToVolEnvHold));
    level.sustain = sustainOf(voice);
    const double decay = followedTime(voice, Generator::VolEnvDecay, Generator::KeyToVolEnvDecay);
    if (level.sustain < 0.0) level.slope = envelopeRange / std::max(envelope::shortestDecay, decay);
    const bool isFallTheEngines = !level.falls() || (level.hold == 0.0 && level.sustain <= -envelopeRange);
    level.isEngines = isFallTheEngines && level.silence == 0.0 && level.attack < slowAttack;
    return level;
}

ImportedContour contourOf(const SoundFontVoice& voice) {
    ImportedContour contour;
    contour.delay = orNone(milliseconds(voice[Generator::ModEnvDelay]));
    contour.attack = orNone(milliseconds(voice[Generator::ModEnvAttack]));
    contour.hold = orNone(followedTime(voice, Generator::ModEnvHold, Generator::KeyToModEnvHold));
    contour.decay = followedTime(voice, Generator::ModEnvDecay, Generator::KeyToModEnvDecay);
    contour.rest = 1.0 - std::clamp(voice[Generator::ModEnvSustain] / 1000.0, 0.0, 1.0);
    return contour;
}

double noLessThan(double least, double amount) {
    return std::fabs(amount) < least ? 0.0 : amount;
}

ImportedSwing swingOf(const SoundFontVoice& voice, Generator delay, Generator rate) {
    ImportedSwing swing;
    swing.delay = orNone(milliseconds(voice[delay]));
    swing.rate = keyZero * std::exp2(std::clamp(voice[rate], -16000, 4500) / 1200.0);
    return swing;
}

std::array<ImportedSwing, 2> swingsOf(const SoundFontVoice& voice) {
    ImportedSwing all = swingOf(voice, Generator::ModLfoDelay, Generator::ModLfoRate);
    all.pitch = noLessThan(1.0, voice[Generator::ModLfoToPitch]);
    all.cutoff = noLessThan(10.0, voice[Generator::ModLfoToFilter]);
    all.level = noLessThan(0.5, voice[Generator::ModLfoToVolume] / 10.0);
    ImportedSwing vibrato = swingOf(voice, Generator::VibLfoDelay, Generator::VibLfoRate);
    vibrato.pitch = noLessThan(1.0, voice[Generator::VibLfoToPitch]);
    return {all.exists() ? all : ImportedSwing{}, vibrato.exists() ? vibrato : ImportedSwing{}};
}

} // namespace

double soundFontResonance(const SoundFontVoice& voice) { // dB
    return std::clamp(voice[Generator::FilterResonance], 0, 960) / 10.0;
}

ImportedEnvelope soundFontEnvelope(const SoundFontVoice& voice, const ImportedLevel& level) {
    ImportedEnvelope made;
    made.attack = milliseconds(voice[Generator::VolEnvAttack]);
    made.release = envelope::releaseOfFall(milliseconds(voice[Generator::VolEnvRelease]), envelopeRange);
    made.sustain = sustainOf(voice);
    if (made.sustain >= 0.0) return made;
    const double decay = followedTime(voice, Generator::VolEnvDecay, Generator::KeyToVolEnvDecay);
    made.decay =
        envelope::decayOfFall(level.exists() ? envelopeRange / level.engineSlope() : decay, envelopeRange);
    made.decay = std::max(envelope::shortestDecay, made.decay);
    return made;
}

ImportedShaping soundFontShaping(const SoundFontVoice& voice) {
    ImportedShaping shaping;
    const int depth = voice[Generator::ModEnvToFilter];
    const int cutoff = std::clamp(voice[Generator::FilterCutoff], 1500, openFilter);
    if (cutoff + std::min(depth, 0) < openFilter) {
        shaping.cutoff = keyZero * std::exp2(cutoff / 1200.0);
        shaping.resonance = soundFontResonance(voice);
        shaping.contourToCutoff = depth;
    }
    shaping.contourToPitch = voice[Generator::ModEnvToPitch];
    if (shaping.contourToCutoff != 0.0 || shaping.contourToPitch != 0.0) shaping.contour = contourOf(voice);
    shaping.level = levelOf(voice);
    shaping.swings = swingsOf(voice);
    if (shaping.level.isEngines && shaping.swings[0].level == 0.0) shaping.level = {}; // nothing rests on it
    return shaping;
}

} // namespace zarno
