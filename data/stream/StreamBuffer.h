// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/ChunkFill.h"
#include "engine/SampleMemory.h"

#include <cstdint>

namespace zarno {

/// One of the two buffers that a streaming voice plays from: a chunk of one or two channels, with guard
/// frames on either side. The disk thread writes it; a voice that comes too early reads it at the same time,
/// so both go through atomic words. Once the disk thread has handed it over, frame0() may be read plainly.
class StreamBuffer {
  public:
    /// [loading] Zeroed room for `frames` stereo frames. Throws std::bad_alloc.
    void allocate(std::uint64_t frames, bool sixteenBit);
    std::uint64_t frames() const { return memory_.frames(); }
    bool isSixteenBit() const { return memory_.isSixteenBit(); }

    /// [disk] Copies a chunk of this length and width, guards included.
    void write(const ChunkTarget& chunk);

    /// [audio] One frame, full scale 1, whoever writes meanwhile. 0 <= index < frames().
    void readFrame(std::int64_t index, bool mono, float& left, float& right) const;

    /// [audio] Interleaved frames; plain reads only while the buffer belongs to the voice.
    const void* frame0() const { return words(); }

  private:
    using Word = std::uint64_t;

    Word* words() const { return static_cast<Word*>(frame0_); }
    Word bitsAt(std::int64_t byte) const;
    float sampleAt(std::int64_t sample) const;

    SampleMemory memory_;
    void* frame0_ = nullptr;
};

} // namespace zarno
