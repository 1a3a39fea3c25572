// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontVoices.h"

#include "data/Limits.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <optional>

namespace zarno {
namespace {

constexpr std::uint16_t velocityConcaveFalling = 0x0502;

std::array<int, generatorCount> defaultAmounts() {
    std::array<int, generatorCount> amounts{};
    const auto set = [&](Generator g, int amount) { amounts[static_cast<std::size_t>(g)] = amount; };
    set(Generator::FilterCutoff, 13500);
    for (const int timecents : {21, 23, 25, 26, 27, 28, 30, 33, 34, 35, 36, 38})
        amounts[static_cast<std::size_t>(timecents)] = -12000;
    set(Generator::FixedKey, -1);
    set(Generator::FixedVelocity, -1);
    set(Generator::ScaleTuning, 100);
    set(Generator::RootKey, -1);
    return amounts;
}

// Of a preset these say nothing: they are the instrument's alone.
bool isInstrumentOnly(Generator g) {
    switch (g) {
    case Generator::StartOffset:
    case Generator::EndOffset:
    case Generator::LoopStartOffset:
    case Generator::LoopEndOffset:
    case Generator::StartCoarseOffset:
    case Generator::EndCoarseOffset:
    case Generator::LoopStartCoarseOffset:
    case Generator::LoopEndCoarseOffset:
    case Generator::FixedKey:
    case Generator::FixedVelocity:
    case Generator::SampleModes:
    case Generator::ExclusiveClass:
    case Generator::RootKey:
    case Generator::KeyRange:
    case Generator::VelocityRange:
    case Generator::Instrument:
    case Generator::SampleId:
        return true;
    default:
        return false;
    }
}

// The value of a zone, else of the zone that speaks for all.
std::optional<int> amountIn(const GeneratorSet& zone, const GeneratorSet* forAll, std::size_t id) {
    if (zone.given[id]) return zone.amounts[id];
    if (forAll && forAll->given[id]) return forAll->amounts[id];
    return {};
}

std::pair<int, int> rangeIn(const GeneratorSet& zone, const GeneratorSet* forAll, Generator g) {
    return zone.has(g) || !forAll ? zone.range(g) : forAll->range(g);
}

bool sameIdentity(const SoundFontModulator& a, const SoundFontModulator& b) {
    return a.source == b.source && a.destination == b.destination && a.amountSource == b.amountSource &&
           a.transform == b.transform;
}

// A zone's own modulators, and of those that speak for all the ones it does not replace.
std::vector<SoundFontModulator> modulatorsIn(const GeneratorSet& zone, const GeneratorSet* forAll) {
    std::vector<SoundFontModulator> list = zone.modulators;
    if (!forAll) return list;
    for (const auto& each : forAll->modulators)
        if (std::none_of(list.begin(), list.end(), [&](const auto& own) { return sameIdentity(own, each); }))
            list.push_back(each);
    return list;
}

bool isVelocityToLevel(const SoundFontModulator& m) {
    return m.source == velocityConcaveFalling && m.amountSource == 0 &&
           m.destination == static_cast<std::uint16_t>(Generator::Attenuation);
}

void addModulators(SoundFontVoice& voice, const std::vector<SoundFontModulator>& list, bool replace) {
    for (const auto& m : list) {
        if (isVelocityToLevel(m))
            voice.velocityAmount = (replace ? 0 : voice.velocityAmount) + m.amount;
        else if (m.amount != 0)
            ++voice.unknownModulators;
    }
}

struct Layer { // one zone, with what speaks for all zones beside it
    const GeneratorSet& zone;
    const GeneratorSet* forAll;
};

bool narrow(int& low, int& high, std::pair<int, int> range) {
    low = std::max(low, range.first);
    high = std::min(high, range.second);
    return low <= high;
}

std::optional<SoundFontVoice> combine(const Layer& preset, const Layer& instrument) {
    SoundFontVoice voice;
    for (const Layer* layer : {&preset, &instrument})
        if (!narrow(voice.lowKey, voice.highKey, rangeIn(layer->zone, layer->forAll, Generator::KeyRange)) ||
            !narrow(voice.lowVelocity, voice.highVelocity,
                    rangeIn(layer->zone, layer->forAll, Generator::VelocityRange)))
            return {};
    static const auto defaults = defaultAmounts();
    for (std::size_t id = 0; id < generatorCount; ++id) {
        voice.amounts[id] = amountIn(instrument.zone, instrument.forAll, id).value_or(defaults[id]);
        if (!isInstrumentOnly(static_cast<Generator>(id)))
            voice.amounts[id] += amountIn(preset.zone, preset.forAll, id).value_or(0);
    }
    voice.instrument = static_cast<std::uint16_t>(preset.zone[Generator::Instrument]);
    voice.sample = static_cast<std::uint16_t>(instrument.zone[Generator::SampleId]);
    addModulators(voice, modulatorsIn(instrument.zone, instrument.forAll), true);
    addModulators(voice, modulatorsIn(preset.zone, preset.forAll), false);
    return voice;
}

const GeneratorSet* zoneForAll(const std::vector<GeneratorSet>& zones, Generator target) {
    return zones.empty() || zones.front().has(target) ? nullptr : &zones.front();
}

} // namespace

std::vector<SoundFontVoice> voicesOf(const SoundFontFile& file, const SoundFontFile::Preset& preset) {
    std::vector<SoundFontVoice> voices;
    std::size_t pairs = 0;
    const GeneratorSet* presetForAll = zoneForAll(preset.zones, Generator::Instrument);
    for (const GeneratorSet& outer : preset.zones) {
        if (!outer.has(Generator::Instrument)) continue;
        const auto& zones = file.instruments[static_cast<std::uint16_t>(outer[Generator::Instrument])].zones;
        const GeneratorSet* forAll = zoneForAll(zones, Generator::SampleId);
        pairs += zones.size();
        if (pairs > limits::importedZones) // two lists of 65,535 zones multiply
            throw MakerError(file.path,
                             "the preset \"" + preset.name + "\" has more layers than can be played");
        for (const GeneratorSet& inner : zones)
            if (inner.has(Generator::SampleId))
                if (const auto voice = combine({outer, presetForAll}, {inner, forAll}))
                    voices.push_back(*voice);
    }
    return voices;
}

} // namespace zarno
