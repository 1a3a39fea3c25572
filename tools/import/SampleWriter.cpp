// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SampleWriter.h"

#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>

namespace zarno {
namespace {

constexpr std::uint64_t framesPerPiece = 16384;

template <int Bytes>
void putInteger(float value, char* to) {
    constexpr float fullScale = Bytes == 2 ? 32768.0f : 8388608.0f;
    const float scaled = std::clamp(value * fullScale, -fullScale, fullScale - 1.0f);
    const auto integer = static_cast<std::int32_t>(std::lrintf(scaled == scaled ? scaled : 0.0f));
    std::memcpy(to, &integer, Bytes); // little-endian: the low bytes
}

void putFloat(float value, char* to) {
    if (!std::isfinite(value)) value = 0.0f;
    std::memcpy(to, &value, sizeof value);
}

// Writes one recording.
class Writer {
  public:
    Writer(const ImportedSample& sample, const SampleForm& form, SampleWidth width, std::ostream& out,
           const std::function<void(std::uint64_t)>& progress)
        : sample_(sample)
        , form_(form)
        , width_(width)
        , out_(out)
        , progress_(progress)
        , sourceChannels_(static_cast<std::size_t>(std::max(sample.format.channels, 1)))
        , channels_(static_cast<std::size_t>(writtenChannels(sample.format)))
        , frameBytes_(channels_ * static_cast<std::size_t>(width)) {}

    void write() {
        recording();
        for (std::uint64_t pass = 1; pass < form_.passes; ++pass)
            put(loop_.data(), loop_.size());
        tail();
    }

  private:
    void recording();
    void tail();
    std::uint64_t readPiece(FrameReader& reader, std::uint64_t frames);
    template <typename Sample>
    void dropChannels(std::vector<Sample>& samples, std::uint64_t frames);
    void convert(std::uint64_t frames);
    void keepLoop(std::uint64_t from, std::uint64_t frames);
    void put(const char* bytes, std::size_t count);

    const ImportedSample& sample_;
    const SampleForm& form_;
    const SampleWidth width_;
    std::ostream& out_;
    const std::function<void(std::uint64_t)>& progress_;
    const std::size_t sourceChannels_, channels_, frameBytes_;
    std::vector<std::int16_t> shorts_;
    std::vector<float> floats_;
    std::vector<char> bytes_;
    std::vector<char> loop_; // as written: all of it when it is unrolled, else its beginning
};

void Writer::put(const char* bytes, std::size_t count) {
    out_.write(bytes, static_cast<std::streamsize>(count));
    if (!out_) throw MakerError({}, "the samples cannot be written: is the disk full?");
    if (progress_) progress_(count / frameBytes_);
}

template <typename Sample>
void Writer::dropChannels(std::vector<Sample>& samples, std::uint64_t frames) {
    if (sourceChannels_ == channels_) return;
    for (std::size_t frame = 0; frame < frames; ++frame)
        for (std::size_t channel = 0; channel < channels_; ++channel)
            samples[frame * channels_ + channel] = samples[frame * sourceChannels_ + channel];
}

void Writer::convert(std::uint64_t frames) {
    const std::size_t count = static_cast<std::size_t>(frames) * channels_;
    char* to = bytes_.data();
    for (std::size_t i = 0; i < count; ++i, to += static_cast<std::size_t>(width_))
        switch (width_) {
        case SampleWidth::Int16:
            putInteger<2>(floats_[i], to);
            break;
        case SampleWidth::Int24:
            putInteger<3>(floats_[i], to);
            break;
        case SampleWidth::Float32:
            putFloat(floats_[i], to);
            break;
        }
}

// The piece as it is written, in bytes_.
std::uint64_t Writer::readPiece(FrameReader& reader, std::uint64_t frames) {
    std::uint64_t got = 0;
    if (width_ == SampleWidth::Int16 && sample_.format.bits <= 16 && !sample_.format.floatingPoint) {
        shorts_.resize(framesPerPiece * sourceChannels_);
        got = reader.read(shorts_.data(), frames);
        dropChannels(shorts_, got);
        std::memcpy(bytes_.data(), shorts_.data(), got * frameBytes_);
    } else {
        floats_.resize(framesPerPiece * sourceChannels_);
        got = reader.read(floats_.data(), frames);
        dropChannels(floats_, got);
        convert(got);
    }
    return got;
}

void Writer::keepLoop(std::uint64_t from, std::uint64_t frames) {
    if (form_.passes == 0) return;
    const std::uint64_t wanted = form_.passes > 1
                                     ? form_.loopFrames()
                                     : std::min(form_.loopFrames(), form_.seam + SampleForm::tailFrames);
    const std::uint64_t low = std::max(from, form_.loopStart);
    const std::uint64_t high = std::min(from + frames, form_.loopStart + wanted);
    if (low < high)
        loop_.insert(loop_.end(), bytes_.data() + (low - from) * frameBytes_,
                     bytes_.data() + (high - from) * frameBytes_);
}

void Writer::recording() {
    const auto reader = sample_.open();
    bytes_.resize(framesPerPiece * frameBytes_);
    for (std::uint64_t done = 0; done < form_.frames;) {
        const std::uint64_t got = readPiece(*reader, std::min(framesPerPiece, form_.frames - done));
        if (got == 0) throw MakerError(sample_.name, "the sample ends before the length it states");
        keepLoop(done, got);
        put(bytes_.data(), got * frameBytes_);
        done += got;
    }
}

void Writer::tail() {
    std::vector<char> bytes((form_.seam + SampleForm::tailFrames) * frameBytes_, 0);
    if (!loop_.empty())
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = loop_[i % loop_.size()];
    put(bytes.data(), bytes.size());
}

struct WaveStart {
    char riff[4] = {'R', 'I', 'F', 'F'};
    std::uint32_t riffSize = 0;
    char wave[4] = {'W', 'A', 'V', 'E'};
    char format[4] = {'f', 'm', 't', ' '};
    std::uint32_t formatSize = 16;
    std::uint16_t tag = 1, channels = 0;
    std::uint32_t sampleRate = 0, byteRate = 0;
    std::uint16_t blockAlign = 0, bits = 0;
    char data[4] = {'d', 'a', 't', 'a'};
    std::uint32_t dataSize = 0;
};
static_assert(sizeof(WaveStart) == 44);

} // namespace

void writeFrames(const ImportedSample& sample, const SampleForm& form, SampleWidth width, std::ostream& out,
                 const std::function<void(std::uint64_t)>& progress) {
    Writer(sample, form, width, out, progress).write();
}

void writeWave(const ImportedSample& sample, const SampleForm& form, SampleWidth width,
               const std::string& path, const std::function<void(std::uint64_t)>& progress) {
    const std::uint64_t bytes = writtenBytes(sample.format, form, width);
    if (bytes > UINT32_MAX - sizeof(WaveStart)) throw MakerError(path, "a wave file holds no more than 4 GB");
    WaveStart start;
    start.dataSize = static_cast<std::uint32_t>(bytes);
    start.riffSize = start.dataSize + static_cast<std::uint32_t>(sizeof start) - 8;
    start.channels = static_cast<std::uint16_t>(writtenChannels(sample.format));
    start.bits = static_cast<std::uint16_t>(8 * static_cast<int>(width));
    start.blockAlign = static_cast<std::uint16_t>(start.channels * start.bits / 8);
    start.sampleRate = static_cast<std::uint32_t>(sample.format.sampleRate);
    start.byteRate = start.sampleRate * start.blockAlign;

    std::ofstream out(filePath(path), std::ios::binary);
    if (!out.write(reinterpret_cast<const char*>(&start), sizeof start))
        throw MakerError(path, "the file cannot be written");
    writeFrames(sample, form, width, out, progress);
    if (!out.flush()) throw MakerError(path, "the file cannot be written");
}

} // namespace zarno
