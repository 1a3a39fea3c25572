// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZSoundFile.h"

#include "data/sound/ZEmbeddedSoundFile.h"

#include <algorithm>
#include <ostream>
#include <vector>

namespace zarno {
namespace {

constexpr std::uint64_t chunkFrames = 32768;

std::uint64_t readFrames(ZSoundFile& sound, std::int16_t* to, std::uint64_t frames) {
    return sound.readShort(to, frames);
}
std::uint64_t readFrames(ZSoundFile& sound, float* to, std::uint64_t frames) {
    return sound.readFloat(to, frames);
}

template <typename Sample>
bool writeFramesAs(ZSoundFile& sound, std::ostream& out) {
    const auto channels = static_cast<std::size_t>(sound.channelCount());
    std::vector<Sample> chunk(chunkFrames * channels);
    sound.seekFrame(0);
    for (std::uint64_t left = sound.lengthInFrames(); left > 0;) {
        const std::uint64_t wanted = std::min(left, chunkFrames);
        if (readFrames(sound, chunk.data(), wanted) != wanted) return false;
        const std::size_t bytes = static_cast<std::size_t>(wanted) * channels * sizeof(Sample);
        out.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(bytes));
        left -= wanted;
    }
    return out.good();
}

} // namespace

bool writeFrames(ZSoundFile& sound, std::ostream& out, int bytesPerSample) {
    if (bytesPerSample == 2) return writeFramesAs<std::int16_t>(sound, out);
    return bytesPerSample == 4 && writeFramesAs<float>(sound, out);
}

bool ZSoundFile::writeEmbedded(std::ostream& out, int bytesPerSample) {
    const bool wasOpen = isOpen();
    if (!wasOpen && !reopen()) return false;
    SampleBlockHeader header;
    header.bytesPerSample = bytesPerSample;
    header.sampleRate = sampleRate();
    header.channels = channelCount();
    header.frames = static_cast<std::int64_t>(lengthInFrames());
    out.write(reinterpret_cast<const char*>(&header), sizeof header);

    const bool written = writeFrames(*this, out, bytesPerSample);
    if (!wasOpen) close();
    return written;
}

void ZSoundFile::setNameFromPath() {
    const std::string& whole = path();
    name_ = whole.substr(whole.rfind('\\') + 1); // npos + 1 is 0: all of it
}

} // namespace zarno
