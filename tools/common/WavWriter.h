// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace zarno {

/// Writes one RIFF wave file, block by block.
class WavWriter {
  public:
    enum class Format { Int16 = 16, Int24 = 24, Float32 = 32 };

    WavWriter() = default;
    ~WavWriter() { close(); }

    /// `path` in UTF-8; an existing file is replaced. False when it cannot be written.
    bool open(const std::string& path, int sampleRate, int channels, Format format);

    /// `channels` pointers to `frames` samples each. Integers are rounded, and clipped at -1..+1. False when
    /// the disk is full or the file would pass the format's 4 GiB: what was written until then stays whole.
    bool write(const float* const* samples, int frames);

    /// Completes the header. False when anything was not written.
    bool close();

  private:
    void appendSample(float value);
    void writeHeader();

    std::ofstream file_;
    std::vector<char> bytes_;
    std::uint64_t dataBytes_ = 0;
    int sampleRate_ = 0;
    int channels_ = 0;
    Format format_ = Format::Int16;
};

} // namespace zarno
