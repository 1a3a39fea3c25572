// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/ChunkFill.h"
#include "data/stream/StreamPoints.h"
#include "tests/support/MemorySound.h"
#include "tests/support/TestInstrument.h"

namespace zarno {

// From now on the zone's sample is a file of its own, of which only the preload is in memory.
inline MemorySound& makeStreaming(ZZone& zone, std::int32_t chunkFrames) {
    auto sound = std::make_unique<MemorySound>(zone.memory, zone.fileSampleRate);
    MemorySound& made = *sound;
    zone.sound = std::move(sound);
    zone.streaming = true;
    zone.chunkFrames = chunkFrames;
    zone.memory = readPreload(zone, zone.memory->isSixteenBit());
    return made;
}

// Every zone that the instrument has, and its voices.
inline void makeStreaming(TestInstrument& instrument, std::int32_t chunkFrames) {
    InstrumentSettings& settings = instrument.engine.settings();
    settings.streaming = 1;
    settings.streamBufferFrames = chunkFrames;
    instrument.engine.rebuildPool();
    for (const auto& group : instrument.engine.groups())
        for (const auto& zone : group->zones())
            makeStreaming(*zone, chunkFrames);
}

} // namespace zarno
