// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZSoundFile.h"
#include "engine/SampleMemory.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <memory>

namespace zarno {

// A sound file whose frames lie in memory, and whose disk can be made slow, stuck or absent.
class MemorySound : public ZSoundFile {
  public:
    explicit MemorySound(std::shared_ptr<const SampleMemory> frames, double rate = 44100.0)
        : frames_(std::move(frames))
        , rate_(rate) {}

    std::function<void(std::uint64_t frames)> onRead; // on the reading thread, before each read
    std::atomic<bool> absent{false};                  // does not open again
    const SampleMemory& memory() const { return *frames_; }

    bool open(const std::string&, std::shared_ptr<const File>, std::uint64_t) override { return reopen(); }
    bool reopen() override { return open_ = !absent; }
    void close() override { open_ = false; }
    std::uint64_t readShort(std::int16_t* to, std::uint64_t frames) override {
        return read(to, frames_->shorts(), frames);
    }
    std::uint64_t readFloat(float* to, std::uint64_t frames) override {
        return read(to, frames_->floats(), frames);
    }
    void seekFrame(std::uint64_t frame) override { at_ = frame; }

    bool isOpen() const override { return open_; }
    std::int32_t sampleRate() const override { return static_cast<std::int32_t>(rate_); }
    std::int32_t channelCount() const override { return frames_->channels(); }
    std::uint64_t lengthInFrames() const override { return frames_->frames(); }
    std::uint64_t storedSize() const override { return frames_->bytes(); }
    std::int32_t bytesPerSample() const override { return frames_->isSixteenBit() ? 2 : 4; }
    const std::string& path() const override { return name_; }
    bool hasRootNote() const override { return false; }
    bool hasLoop() const override { return false; }
    std::uint64_t loopStart() const override { return 0; }
    std::uint64_t loopEnd() const override { return 0; }
    std::uint8_t rootNote() const override { return 0; }

  private:
    template <typename Sample>
    std::uint64_t read(Sample* to, const Sample* from, std::uint64_t frames) {
        if (!open_ || from == nullptr || at_ >= frames_->frames()) return 0;
        frames = std::min(frames, frames_->frames() - at_);
        if (onRead) onRead(frames);
        const auto channels = static_cast<std::uint64_t>(frames_->channels());
        std::memcpy(to, from + at_ * channels, frames * channels * sizeof(Sample));
        at_ += frames;
        return frames;
    }

    std::shared_ptr<const SampleMemory> frames_;
    double rate_;
    bool open_ = false;
    std::uint64_t at_ = 0;
};

} // namespace zarno
