// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

class Bytes;

/// What the chunks of a RIFF/WAVE file say.
struct WaveHeader {
    std::int32_t sampleRate = 44100;
    std::int32_t channels = 2;
    std::int32_t bytesPerSample = 0;
    bool floatSamples = false;
    std::uint32_t bytesPerFrame = 0; ///< distance from frame to frame; the samples lie at its start
    std::uint32_t riffSize = 0;      ///< as the file states it
    std::uint64_t dataOffset = 0;    ///< of frame 0
    std::uint64_t frames = 0;        ///< whole frames that the file really holds
    bool hasRootNote = false;
    std::uint8_t rootNote = 0;
    bool hasLoop = false;
    std::uint64_t loopStart = 0;
    std::uint64_t loopEnd = 0; ///< exclusive
};

/// Players read plain integer samples only; tools also read 32-bit floats and the extensible format.
enum class WaveFormats { Player, Tools };

/// Reads the header of a PCM wave of 8, 16, 24 or 32 bits and 1 or 2 channels. False when it is something
/// else or has sample data before its format. Sizes beyond the file's end are cut there.
bool readWaveHeader(Bytes& bytes, WaveHeader& header, WaveFormats formats = WaveFormats::Player);

} // namespace zarno
