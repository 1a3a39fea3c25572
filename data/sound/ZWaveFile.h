// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/WaveHeader.h"
#include "data/sound/ZSoundFile.h"
#include "platform/File.h"

namespace zarno {

/// Reads a PCM wave file on disk. Says 44100 Hz and 2 channels until it was opened.
class ZWaveFile final : public ZSoundFile {
  public:
    explicit ZWaveFile(WaveFormats formats = WaveFormats::Player)
        : formats_(formats) {}
    ~ZWaveFile() override { close(); }
    ZWaveFile(const ZWaveFile&) = delete;
    ZWaveFile& operator=(const ZWaveFile&) = delete;

    bool open(const std::string& path, std::shared_ptr<const File> file = {},
              std::uint64_t position = 0) override;
    bool reopen() override;
    void close() override;
    /// 32-bit integers have no 16-bit form: they read as silence. Floats are clipped.
    std::uint64_t readShort(std::int16_t* destination, std::uint64_t frames) override;
    std::uint64_t readFloat(float* destination, std::uint64_t frames) override;
    void seekFrame(std::uint64_t frame) override { frame_ = frame; }

    bool isOpen() const override { return file_.isOpen(); }
    std::int32_t sampleRate() const override { return header_.sampleRate; }
    std::int32_t channelCount() const override { return header_.channels; }
    std::uint64_t lengthInFrames() const override { return header_.frames; }
    std::uint64_t storedSize() const override { return header_.riffSize; }
    std::int32_t bytesPerSample() const override { return header_.bytesPerSample; }
    const std::string& path() const override { return path_; }
    bool hasRootNote() const override { return header_.hasRootNote; }
    bool hasLoop() const override { return header_.hasLoop; }
    std::uint64_t loopStart() const override { return header_.loopStart; }
    std::uint64_t loopEnd() const override { return header_.loopEnd; }
    std::uint8_t rootNote() const override { return header_.rootNote; }
    bool hasFloatSamples() const { return header_.floatSamples; }

    /// [any thread] Wave files open in the whole program.
    static int openCount();

  private:
    bool openHandle();
    template <typename Out>
    std::uint64_t readFrames(Out* destination, std::uint64_t frames);
    template <typename Out>
    std::uint64_t readChunk(Out* destination, std::uint64_t frames);
    bool isPlain16Bit() const;

    File file_;
    std::string path_;
    WaveFormats formats_;
    WaveHeader header_;
    bool headerKnown_ = false;
    std::uint64_t frame_ = 0;
};

} // namespace zarno
