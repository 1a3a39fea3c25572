// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontFrames.h"

#include "platform/File.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <vector>

namespace zarno {
namespace {

class SoundFontFrames final : public FrameReader {
  public:
    SoundFontFrames(const std::string& path, std::vector<std::uint64_t> starts, std::uint64_t frames)
        : file_(path)
        , starts_(std::move(starts))
        , frames_(frames) {
        if (!file_.isOpen()) throw MakerError(path, "the file cannot be opened");
    }

    std::uint64_t read(std::int16_t* destination, std::uint64_t frames) override {
        frames = std::min(frames, frames_ - frame_);
        const std::size_t channels = starts_.size();
        std::vector<std::int16_t> one(static_cast<std::size_t>(frames));
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const std::uint64_t position = starts_[channel] + 2 * frame_;
            frames = std::min<std::uint64_t>(frames, file_.readAt(position, one.data(), 2 * frames) / 2);
            for (std::size_t i = 0; i < frames; ++i)
                destination[i * channels + channel] = one[i];
        }
        frame_ += frames;
        return frames;
    }

    std::uint64_t read(float* destination, std::uint64_t frames) override {
        std::vector<std::int16_t> values(static_cast<std::size_t>(std::min(frames, frames_ - frame_)) *
                                         starts_.size());
        frames = read(values.data(), frames);
        for (std::size_t i = 0; i < frames * starts_.size(); ++i)
            destination[i] = static_cast<float>(values[i]) / 32768.0f;
        return frames;
    }

  private:
    File file_;
    std::vector<std::uint64_t> starts_; // byte position of each channel
    std::uint64_t frames_;
    std::uint64_t frame_ = 0;
};

} // namespace

std::unique_ptr<FrameReader> openFrames(const SoundFontFile& file, std::size_t left,
                                        std::optional<std::size_t> right) {
    const SoundFontSample& sample = file.samples[left];
    std::vector<std::uint64_t> starts = {file.dataPosition + 2ull * sample.start};
    if (right) starts.push_back(file.dataPosition + 2ull * file.samples[*right].start);
    return std::make_unique<SoundFontFrames>(file.path, std::move(starts), sample.end - sample.start);
}

} // namespace zarno
