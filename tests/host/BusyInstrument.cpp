// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/BusyInstrument.h"

#include "tests/support/Chance.h"

#include <cmath>

namespace zarno::test {
namespace {

// Frames are stored as wide as the instrument keeps them.
std::string busySound(int index, int frames, bool sixteenBit) {
    const int rate = index % 3 == 0 ? 48000 : 44100;
    const auto value = [index](int at) { return 0.4 * std::sin(0.01 * (index + 3) * at); };
    if (sixteenBit) return monoBlock(frames, rate, value);
    std::string data;
    for (int at = 0; at < frames; ++at)
        data += raw(static_cast<float>(value(at)));
    return block(4, rate, 1, frames, data);
}

InstrumentBuilder::Zone busyZone(int index, bool sixteenBit, Chance& chance) {
    const int frames = 3000 + index * 2500;
    auto made = zone("sound " + std::to_string(index), busySound(index, frames, sixteenBit));
    ZoneRecord& record = made.record;
    record.rootKey = 48 + index * 3;
    record.loopMode = index % 4 == 0 ? 1 : index % 2 == 0 ? 0 : 2;
    record.loopEnd = static_cast<std::uint64_t>(frames - 10);
    record.loopStart = record.loopEnd - static_cast<std::uint64_t>(chance.between(2, 2000));
    record.lowVelocity = index % 2 == 0 ? 0 : 64;
    record.attack = chance.real(0, 40);
    record.decay = chance.real(0, 200);
    record.sustain = chance.real(-20, 0);
    record.release = chance.real(0, 800);
    record.pan = chance.real(-1, 1);
    record.fineTune = chance.real(-50, 50);
    record.exclusiveId = index % 5 == 4 ? 1 : 0;
    return made;
}

} // namespace

InstrumentBuilder busyInstrument(const std::string& name, const BusyKind& kind) {
    Chance chance(11);
    InstrumentBuilder made = levelInstrument(name);
    InstrumentSettings& settings = made.settings;
    settings.streaming = settings.streamingStored = kind.streaming;
    settings.streamBufferFrames = settings.streamBufferFramesStored = 1024;
    settings.sixteenBit = settings.sixteenBitStored = kind.sixteenBit;
    settings.polyphony = settings.polyphonyStored = kind.polyphony;
    settings.reverbSend = static_cast<float>(kind.reverb);
    settings.lfoDepth = 0.2f;
    made.groups.clear();
    using Trigger = GroupTrigger;
    constexpr Trigger triggers[] = {Trigger::Always, Trigger::Note,    Trigger::Note,       Trigger::Always,
                                    Trigger::Always, Trigger::Program, Trigger::Controller, Trigger::Channel};
    int zones = 0;
    for (int g = 0; g < static_cast<int>(std::size(triggers)); ++g) {
        GroupRecord record;
        record.trigger = static_cast<std::int32_t>(triggers[g]);
        record.keyswitchNote = 24 + g;
        record.program = record.channel = 1;
        record.controllerNumber = 20;
        record.controllerLow = 64;
        record.selectionMode = g % 5;
        record.releaseTrigger = g == 3;
        record.releaseDecayTime = 1500.0f;
        record.volume = -6.0f;
        made.groups.push_back({"group " + std::to_string(g), record, {}, {}});
        for (int z = 0; z < 3; ++z)
            made.groups.back().zones.push_back(busyZone(zones++, kind.sixteenBit, chance));
    }
    return made;
}

} // namespace zarno::test
