// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontFrames.h"

#include "platform/File.h"
#include "tools/import/CompressedSound.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zarno {
namespace {

class SoundFontFrames final : public FrameReader {
  public:
    SoundFontFrames(const SoundFontFile& file, std::vector<std::uint32_t> starts, std::uint64_t frames)
        : file_(file.path)
        , points_(file.dataPosition)
        , lowBytes_(file.lowBytesPosition)
        , starts_(std::move(starts))
        , frames_(frames) {
        if (!file_.isOpen()) throw MakerError(file.path, "the file cannot be opened");
    }

    std::uint64_t read(std::int16_t* destination, std::uint64_t frames) override {
        frames = next(frames);
        for (std::size_t i = 0; i < high_.size(); ++i)
            destination[i] = high_[i];
        return frames;
    }

    std::uint64_t read(float* destination, std::uint64_t frames) override {
        frames = next(frames);
        for (std::size_t i = 0; i < high_.size(); ++i)
            destination[i] = static_cast<float>(high_[i] * 256 + low_[i]) / 8388608.0f;
        return frames;
    }

  private:
    // The next frames, interleaved, as their upper 16 bits and the 8 below them.
    std::uint64_t next(std::uint64_t frames) {
        frames = std::min(frames, frames_ - frame_);
        const std::size_t channels = starts_.size();
        high_.assign(static_cast<std::size_t>(frames) * channels, 0);
        low_.assign(high_.size(), 0);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const std::uint64_t at = starts_[channel] + frame_;
            fill(high_, channel, one_, points_ + 2 * at, frames);
            if (lowBytes_ > 0) fill(low_, channel, oneLow_, lowBytes_ + at, frames);
        }
        frame_ += frames;
        return frames;
    }

    template <typename T>
    void fill(std::vector<T>& all, std::size_t channel, std::vector<T>& one, std::uint64_t position,
              std::uint64_t frames) {
        one.resize(static_cast<std::size_t>(frames));
        const std::size_t got = file_.readAt(position, one.data(), frames * sizeof(T)) / sizeof(T);
        for (std::size_t i = 0; i < got; ++i)
            all[i * starts_.size() + channel] = one[i];
    }

    File file_;
    const std::uint64_t points_, lowBytes_;
    std::vector<std::uint32_t> starts_; // point of each channel
    std::uint64_t frames_;
    std::uint64_t frame_ = 0;
    std::vector<std::int16_t> high_, one_;
    std::vector<std::uint8_t> low_, oneLow_;
};

// The same of compressed samples: each side is a sound of its own.
class CompressedFrames final : public FrameReader {
  public:
    CompressedFrames(const SoundFontFile& file, const std::vector<std::size_t>& samples, std::uint64_t frames)
        : frames_(frames) {
        for (const std::size_t index : samples) {
            const SoundFontSample& sample = file.samples[index];
            sides_.push_back(
                std::make_unique<CompressedSound>(file.path, sample.bytesPosition, sample.bytes));
            if (!sides_.back()->isOpen())
                throw MakerError(file.path, "the sample " + sample.name + " cannot be read");
        }
    }

    std::uint64_t read(float* destination, std::uint64_t frames) override {
        frames = std::min(frames, frames_ - frame_);
        std::fill(destination, destination + frames * sides_.size(), 0.0f); // where a sound ends too early
        one_.resize(static_cast<std::size_t>(frames));
        for (std::size_t side = 0; side < sides_.size(); ++side) {
            const std::uint64_t got = sides_[side]->read(one_.data(), frames);
            for (std::size_t i = 0; i < got; ++i)
                destination[i * sides_.size() + side] = one_[i];
        }
        frame_ += frames;
        return frames;
    }

    std::uint64_t read(std::int16_t* destination, std::uint64_t frames) override {
        floats_.resize(static_cast<std::size_t>(std::min(frames, frames_ - frame_)) * sides_.size());
        frames = read(floats_.data(), frames);
        std::transform(floats_.begin(), floats_.end(), destination, [](float value) {
            return static_cast<std::int16_t>(std::lrintf(std::clamp(value * 32768.0f, -32768.0f, 32767.0f)));
        });
        return frames;
    }

  private:
    std::vector<std::unique_ptr<CompressedSound>> sides_;
    std::uint64_t frames_, frame_ = 0;
    std::vector<float> one_, floats_;
};

} // namespace

std::unique_ptr<FrameReader> openFrames(const SoundFontFile& file, std::size_t left,
                                        std::optional<std::size_t> right) {
    const SoundFontSample& sample = file.samples[left];
    if (sample.isCompressed()) {
        std::vector<std::size_t> sides = {left};
        if (right) sides.push_back(*right);
        return std::make_unique<CompressedFrames>(file, sides, sample.end);
    }
    std::vector<std::uint32_t> starts = {sample.start};
    if (right) starts.push_back(file.samples[*right].start);
    return std::make_unique<SoundFontFrames>(file, std::move(starts), sample.end - sample.start);
}

} // namespace zarno
