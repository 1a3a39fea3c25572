// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

#include <cstdint>

namespace zarno {

class ZZone;

/// The chunk length in force for these settings, in frames: the length of a zone's preload and of each of a
/// voice's two buffers. At most 4,194,304, and short enough for the buffers of all voices to take no more
/// than 256 MiB.
std::int32_t chunkFramesInUse(const InstrumentSettings& settings);

/// What decides which frames of a sound file follow one another when a zone is streamed. Plain arithmetic:
/// the thread that asks for a chunk and the thread that reads it come to the same result.
struct StreamPoints {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    std::uint64_t loopStart = 0;
    std::uint64_t loopEnd = 0; ///< exclusive
    std::uint64_t length = 0;  ///< frames in the file
    bool loops = false;        ///< a loop of at least one frame

    StreamPoints() = default;
    StreamPoints(const ZoneRecord& record, std::uint64_t lengthInFrames);

    /// True when the chunk of `chunk` frames from `frame` on runs into the loop end.
    bool wraps(std::uint64_t frame, std::uint64_t chunk) const { return loops && loopEnd < frame + chunk; }

    /// Of `count` frames from `frame` on, those that the file holds.
    std::uint64_t available(std::uint64_t frame, std::uint64_t count) const;

    /// The frame at which the first chunk behind the preload begins.
    std::uint64_t frameBehindPreload(std::uint64_t chunk) const;

    /// The frame at which the chunk behind the one from `frame` begins.
    std::uint64_t frameBehind(std::uint64_t frame, std::uint64_t chunk) const;
};

} // namespace zarno
