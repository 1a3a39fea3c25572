// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZSoundFile.h"
#include "engine/Envelope.h"
#include "engine/Records.h"
#include "engine/SampleMemory.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace zarno {

class ZGroup;

// One sample mapped to a key and velocity range: its record, its sound file, the frames kept in memory and
// the values derived from record and group. Built by the thread that reads the instrument file; while the
// instrument plays, the derived values are the audio thread's and the rest does not change.
class ZZone {
  public:
    ZoneRecord record;
    ZGroup* group = nullptr;           // not owned, may be null
    std::shared_ptr<ZSoundFile> sound; // shared with the thread that reads from it

    // The whole sample, or of a streaming zone its preload: the first chunk from its start frame on, or less
    // where the sample ends within it. Zones that need the same frames share them.
    std::shared_ptr<SampleMemory> memory;
    std::uint64_t lengthInFrames = 0; // of the sound file
    double fileSampleRate = 44100.0;  // Hz
    bool mono = false;                // the sound file has one channel
    bool streaming = false;
    std::int32_t chunkFrames = 0;          // of a streaming zone: length of a chunk, as when it was loaded
    std::atomic<double> lastAccessMs{0.0}; // system clock, after the latest read of a chunk
    bool valid = false;                    // the sound file could be opened

    // [audio] Attack, decay, gain and so on at this rate, computed anew when the group's values or the rate have
    // changed.
    const ZoneGains& gains(double sampleRate, std::uint32_t rateGeneration);

    bool matches(int key, int velocity) const {
        return record.lowKey <= key && key <= record.highKey && record.lowVelocity <= velocity &&
               velocity <= record.highVelocity;
    }

    // One frame held in memory, full scale 1; silence outside it.
    void readFrame(std::int64_t index, float& left, float& right) const;

  private:
    ZoneGains gains_;
    std::uint64_t gainsStamp_ = ~std::uint64_t{0};
};

} // namespace zarno
