// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZSoundFile.h"

#include <cstddef>

namespace zarno {

/// The 24 bytes before the frames of a sample inside an instrument file.
struct SampleBlockHeader {
    std::int32_t bytesPerSample = 0; ///< 2: 16-bit integers; 4: floats; anything else does not open
    std::int32_t sampleRate = 0;
    std::int32_t channels = 0;
    std::uint32_t reserved = 0;
    std::int64_t frames = 0;
};
static_assert(sizeof(SampleBlockHeader) == 24 && offsetof(SampleBlockHeader, frames) == 16);

/// Reads a sample block inside an instrument file. Reads are positional: any number of these share one open
/// file. There is no conversion between the two widths: reading the other one gives no frames.
class ZEmbeddedSoundFile final : public ZSoundFile {
  public:
    bool open(const std::string& path, std::shared_ptr<const File> file, std::uint64_t position) override;
    bool reopen() override { return isOpen(); }
    void close() override {} // the file is shared with the instrument's other sounds
    std::uint64_t readShort(std::int16_t* destination, std::uint64_t frames) override;
    std::uint64_t readFloat(float* destination, std::uint64_t frames) override;
    void seekFrame(std::uint64_t frame) override { frame_ = frame; }

    bool isOpen() const override { return open_; }
    std::int32_t sampleRate() const override { return header_.sampleRate; }
    /// Of more than two stored channels the first two are read.
    std::int32_t channelCount() const override { return header_.channels >= 2 ? 2 : 1; }
    /// Frames that the file really holds; 0 when the block states no channels.
    std::uint64_t lengthInFrames() const override { return length_; }
    /// Header and frames. Counts one channel only, on purpose: it is the size as the format's tools state it.
    std::uint64_t storedSize() const override;
    std::int32_t bytesPerSample() const override { return header_.bytesPerSample; }
    const std::string& path() const override { return name_; }
    bool hasRootNote() const override { return false; }
    bool hasLoop() const override { return false; }
    std::uint64_t loopStart() const override { return 0; }
    std::uint64_t loopEnd() const override { return 0; }
    std::uint8_t rootNote() const override { return 0; }

  private:
    std::uint64_t framesInFile() const;
    template <typename Sample>
    std::uint64_t readFrames(Sample* destination, std::uint64_t frames);
    template <typename Sample>
    std::uint64_t readFirstTwoChannels(Sample* destination, std::uint64_t frames);

    std::shared_ptr<const File> file_;
    std::uint64_t position_ = 0;
    SampleBlockHeader header_;
    bool open_ = false;
    std::uint64_t length_ = 0;
    std::uint64_t frame_ = 0;
};

} // namespace zarno
