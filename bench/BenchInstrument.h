// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ZInstrument.h"

#include <memory>
#include <random>

namespace zarno::bench {

// Noise in memory: the content does not matter to the cost.
inline std::shared_ptr<SampleMemory> makeNoise(std::uint64_t frames, int channels, bool sixteenBit) {
    auto memory = std::make_shared<SampleMemory>();
    if (!memory->allocate(frames, channels, sixteenBit)) throw std::bad_alloc();
    std::minstd_rand random(1);
    const auto values = frames * static_cast<std::uint64_t>(channels);
    for (std::uint64_t i = 0; i < values; ++i) {
        const auto value = static_cast<std::int16_t>(random() & 0x3FFF);
        if (sixteenBit)
            memory->shorts()[i] = value;
        else
            memory->floats()[i] = static_cast<float>(value) / 32768.0f;
    }
    return memory;
}

inline std::unique_ptr<ZZone> makeZone(const std::shared_ptr<SampleMemory>& memory, int lowKey, int highKey) {
    auto zone = std::make_unique<ZZone>();
    zone->memory = memory;
    zone->lengthInFrames = memory->frames();
    zone->mono = memory->channels() == 1;
    zone->valid = true;
    zone->record.rootKey = 60;
    zone->record.lowKey = lowKey;
    zone->record.highKey = highKey;
    zone->record.highVelocity = 127;
    zone->record.endFrame = memory->frames() - 1;
    zone->record.release = 100.0f;
    return zone;
}

inline void setVoices(ZInstrument& instrument, int polyphony) {
    instrument.settings().streaming = 0;
    instrument.settings().polyphony = polyphony;
    instrument.rebuildPool();
}

} // namespace zarno::bench
