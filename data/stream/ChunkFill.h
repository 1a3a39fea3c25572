// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/SampleMemory.h"

#include <functional>

namespace zarno {

class ZSoundFile;
class ZZone;
struct StreamPoints;

/// Where a chunk is read to: `frames` frames of the zone's channels, with SampleMemory::guardFrames more on
/// either side.
struct ChunkTarget {
    void* frame0 = nullptr;
    std::uint64_t frames = 0;
    int channels = 0;
    bool sixteenBit = true;

    std::size_t frameBytes() const {
        return static_cast<std::size_t>(channels) * (sixteenBit ? sizeof(std::int16_t) : sizeof(float));
    }
};

enum class ChunkResult {
    Filled,
    NoFile,    ///< the sound file did not open; nothing was written
    Abandoned, ///< `goOn` said so; the target holds a part
};

/// Fills `target` with the frames from `frame` on, the loop unrolled, silence where the file holds nothing.
/// Opens the sound file and closes it again. After each read `goOn` is told the bytes read and says whether
/// to continue. Touches nothing but its arguments. Any thread that may read files, one at a time from one sound.
ChunkResult fillChunk(ZSoundFile& sound, const StreamPoints& points, std::uint64_t frame,
                      const ChunkTarget& target, const std::function<bool(std::size_t bytesRead)>& goOn);

/// Interpolation does not look across the seams of a ring: the frames before a chunk repeat its first one,
/// those behind it its last one.
void writeSeamBefore(const ChunkTarget& target);
void writeSeamBehind(const ChunkTarget& target);

/// [reader, loading] Reads the frames that a streaming zone keeps in memory: the first chunk from its start frame on, or what
/// there is of it. Null when the sound file does not open or `goOn`, asked after each read, says no. Throws
/// std::bad_alloc.
std::shared_ptr<SampleMemory> readPreload(
    ZZone& zone, bool sixteenBit, const std::function<bool()>& goOn = [] { return true; });

} // namespace zarno
