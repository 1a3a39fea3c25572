// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/DecodedSound.h"

#include "tools/import/SoundFileReader.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zarno {
namespace {

constexpr std::uint64_t framesAtOnce = 16384;

class DecodedSound final : public ZSoundFile {
  public:
    bool open(const std::string& path, std::shared_ptr<const File> = {}, std::uint64_t = 0) override {
        path_ = path;
        std::string why;
        const auto info = readSoundFileInfo(path, why);
        if (!info || info->format.channels < 1) return false;
        info_ = *info;
        return reopen();
    }
    bool reopen() override {
        frame_ = 0;
        try {
            reader_ = soundFileSample(path_, path_, info_.format).open();
        } catch (const MakerError&) {
            reader_ = nullptr;
        }
        return isOpen();
    }
    void close() override { reader_ = nullptr; }
    std::uint64_t readShort(std::int16_t* destination, std::uint64_t frames) override;
    std::uint64_t readFloat(float* destination, std::uint64_t frames) override {
        return readAs(destination, frames);
    }
    void seekFrame(std::uint64_t frame) override;

    bool isOpen() const override { return reader_ != nullptr; }
    std::int32_t sampleRate() const override { return static_cast<std::int32_t>(info_.format.sampleRate); }
    std::int32_t channelCount() const override { return std::min(info_.format.channels, 2); }
    std::uint64_t lengthInFrames() const override { return info_.format.frames; }
    std::uint64_t storedSize() const override { return 0; }
    std::int32_t bytesPerSample() const override { return std::max(info_.format.bits, 16) / 8; }
    const std::string& path() const override { return path_; }
    bool hasRootNote() const override { return info_.rootKey.has_value(); }
    bool hasLoop() const override { return info_.hasLoop; }
    std::uint64_t loopStart() const override { return info_.loopStart; }
    std::uint64_t loopEnd() const override { return info_.loopEnd; }
    std::uint8_t rootNote() const override { return static_cast<std::uint8_t>(info_.rootKey.value_or(0)); }

  private:
    template <typename Sample>
    std::uint64_t readAs(Sample* destination, std::uint64_t frames);

    std::string path_;
    SoundFileInfo info_;
    std::unique_ptr<FrameReader> reader_;
    std::uint64_t frame_ = 0;
};

template <typename Sample>
std::uint64_t DecodedSound::readAs(Sample* destination, std::uint64_t frames) {
    const auto source = static_cast<std::size_t>(info_.format.channels);
    const auto kept = static_cast<std::size_t>(channelCount());
    std::vector<Sample> piece;
    std::uint64_t done = 0;
    while (reader_ && done < frames) {
        const std::uint64_t wanted = std::min(frames - done, framesAtOnce);
        piece.resize(static_cast<std::size_t>(wanted) * source);
        const std::uint64_t got = reader_->read(piece.data(), wanted);
        if (got == 0) break;
        for (std::size_t frame = 0; frame < got; ++frame)
            std::copy_n(&piece[frame * source], kept, destination + (done + frame) * kept);
        done += got;
    }
    frame_ += done;
    return done;
}

std::uint64_t DecodedSound::readShort(std::int16_t* destination, std::uint64_t frames) {
    if (info_.format.bits <= 16 && !info_.format.floatingPoint) return readAs(destination, frames);
    std::vector<float> values(static_cast<std::size_t>(frames) * static_cast<std::size_t>(channelCount()));
    const std::uint64_t got = readAs(values.data(), frames);
    for (std::size_t i = 0; i < got * static_cast<std::size_t>(channelCount()); ++i) {
        const float value = std::isfinite(values[i]) ? values[i] * 32768.0f : 0.0f;
        destination[i] = static_cast<std::int16_t>(std::lrintf(std::clamp(value, -32768.0f, 32767.0f)));
    }
    return got;
}

void DecodedSound::seekFrame(std::uint64_t frame) {
    if (frame < frame_) reopen();
    std::vector<float> skipped(framesAtOnce * static_cast<std::size_t>(channelCount()));
    while (frame_ < frame && readAs(skipped.data(), std::min(frame - frame_, framesAtOnce)) > 0) {
    }
}

} // namespace

std::unique_ptr<ZSoundFile> openDecoded(const std::string& path) {
    auto sound = std::make_unique<DecodedSound>();
    return sound->open(path) ? std::move(sound) : nullptr;
}

} // namespace zarno
