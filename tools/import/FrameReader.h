// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

struct SoundFormat {
    int sampleRate = 44100; ///< Hz
    int channels = 1;       ///< any number; instruments keep the first two
    std::uint64_t frames = 0;
    int bits = 16;              ///< of integer samples
    bool floatingPoint = false; ///< samples are floats, and `bits` says nothing
};

/// Reads the frames of one recording, once, from beginning to end. Frames are interleaved by channel, full
/// scale is -1..+1.
class FrameReader {
  public:
    virtual ~FrameReader() = default;

    /// Read up to `frames` frames and return how many there were: fewer only at the end. Integers of up to 24
    /// bits are read exactly as floats, those of up to 16 bits exactly as shorts.
    virtual std::uint64_t read(float* destination, std::uint64_t frames) = 0;
    virtual std::uint64_t read(std::int16_t* destination, std::uint64_t frames) = 0;
};

} // namespace zarno
