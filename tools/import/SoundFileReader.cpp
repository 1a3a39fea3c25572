// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFileReader.h"

#include "tools/import/InstChunk.h"
#include "tools/zarno/MakerError.h"

#include <sndfile.h>

#include <algorithm>
#include <cstring>

namespace zarno {
namespace {

class OpenSound {
  public:
    explicit OpenSound(const std::string& path)
        : handle_(sf_open(path.c_str(), SFM_READ, &info_)) {
        if (handle_) sf_command(handle_, SFC_SET_CLIPPING, nullptr, SF_TRUE);
    }
    ~OpenSound() {
        if (handle_) sf_close(handle_);
    }
    OpenSound(const OpenSound&) = delete;
    OpenSound& operator=(const OpenSound&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }
    SNDFILE* get() const { return handle_; }
    const SF_INFO& info() const { return info_; }

  private:
    SF_INFO info_ = {};
    SNDFILE* handle_;
};

class SoundFileReader final : public FrameReader {
  public:
    explicit SoundFileReader(const std::string& path)
        : sound_(path) {
        if (!sound_) throw MakerError(path, sf_strerror(nullptr));
    }
    std::uint64_t read(float* destination, std::uint64_t frames) override {
        return counted(sf_readf_float(sound_.get(), destination, static_cast<sf_count_t>(frames)));
    }
    std::uint64_t read(std::int16_t* destination, std::uint64_t frames) override {
        return counted(sf_readf_short(sound_.get(), destination, static_cast<sf_count_t>(frames)));
    }

  private:
    static std::uint64_t counted(sf_count_t frames) {
        return static_cast<std::uint64_t>(std::max<sf_count_t>(frames, 0));
    }

    OpenSound sound_;
};

SoundFormat formatOf(const SF_INFO& info) {
    SoundFormat format;
    format.sampleRate = info.samplerate;
    format.channels = info.channels;
    format.frames = static_cast<std::uint64_t>(std::max<sf_count_t>(info.frames, 0));
    switch (info.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_24:
        format.bits = 24;
        break;
    case SF_FORMAT_PCM_32:
        format.bits = 32;
        break;
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
        format.bits = 32, format.floatingPoint = true;
        break;
    default:
        break; // fewer bits, and lossy codecs, whose noise is above that of 16
    }
    return format;
}

void readSamplerChunk(const OpenSound& sound, SoundFileInfo& info) {
    SF_INSTRUMENT chunk;
    std::memset(&chunk, 0, sizeof chunk);
    if (sf_command(sound.get(), SFC_GET_INSTRUMENT, &chunk, sizeof chunk) != SF_TRUE) return;
    if (chunk.basenote > 0) info.rootKey = chunk.basenote;
    info.tune = -chunk.detune; // it says how sharp the recording is
    const auto& loop = chunk.loops[0];
    info.hasLoop = chunk.loop_count > 0 && loop.mode != SF_LOOP_NONE;
    if (info.hasLoop) info.loopStart = loop.start, info.loopEnd = loop.end;
}

} // namespace

std::optional<SoundFileInfo> readSoundFileInfo(const std::string& path, std::string& why) {
    const OpenSound sound(path);
    if (!sound) {
        why = sf_strerror(nullptr);
        return std::nullopt;
    }
    SoundFileInfo info;
    info.format = formatOf(sound.info());
    readSamplerChunk(sound, info);
    readInstChunk(path, info);
    return info;
}

ImportedSample soundFileSample(const std::string& path, const std::string& name, const SoundFormat& format) {
    return {name, format, [path] { return std::make_unique<SoundFileReader>(path); }, {}, {}};
}

} // namespace zarno
