// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/WaveCopy.h"

#include "data/sound/ZSoundFile.h"
#include "platform/Utf8.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <vector>

namespace zarno {
namespace {

constexpr std::uint64_t framesAtOnce = 16384;

void writeAs24Bits(ZSoundFile& sound, const std::string& path, std::ostream& out) {
    constexpr float fullScale = 8388608.0f;
    const auto channels = static_cast<std::size_t>(sound.channelCount());
    std::vector<float> values(framesAtOnce * channels);
    std::vector<char> bytes(values.size() * 3);
    for (std::uint64_t left = sound.lengthInFrames(); left > 0;) {
        const std::uint64_t got = sound.readFloat(values.data(), std::min(left, framesAtOnce));
        if (got == 0) throw MakerError(path, "the recording ends before the length it states");
        char* to = bytes.data();
        for (std::size_t i = 0; i < got * channels; ++i, to += 3) {
            const float value = std::isfinite(values[i]) ? values[i] * fullScale : 0.0f;
            const auto whole = std::lrintf(std::clamp(value, -fullScale, fullScale - 1.0f));
            for (int byte = 0; byte < 3; ++byte)
                to[byte] = static_cast<char>(whole >> (8 * byte));
        }
        out.write(bytes.data(), to - bytes.data());
        left -= got;
    }
}

} // namespace

std::string waveHeader(int channels, int width, bool floats, std::int32_t rate, std::uint64_t dataBytes) {
    std::string out;
    const auto put = [&](auto value) { out.append(reinterpret_cast<const char*>(&value), sizeof value); };
    const auto hertz = static_cast<std::uint32_t>(rate);
    const auto frame = static_cast<std::uint16_t>(channels * width);
    out += "RIFF";
    put(static_cast<std::uint32_t>(waveHeaderBytes - 8 + dataBytes));
    out += "WAVEfmt ";
    put(std::uint32_t{16});
    put(static_cast<std::uint16_t>(floats ? 3 : 1));
    put(static_cast<std::uint16_t>(channels));
    put(hertz);
    put(static_cast<std::uint32_t>(hertz * frame));
    put(frame);
    put(static_cast<std::uint16_t>(width * 8));
    out += "data";
    put(static_cast<std::uint32_t>(dataBytes));
    return out;
}

std::string nameOfCopy(const std::string& name) {
    const std::string folded = withFoldedCase(name);
    if (folded.ends_with(".wav")) return name.substr(0, name.size() - 4) + ".pcm.wav";
    return name + ".wav";
}

int bitsOfCopy(const ZSoundFile& sound) {
    return sound.bytesPerSample() > 2 ? 24 : 16;
}

void writeCopy(ZSoundFile& sound, const std::string& path, std::ostream& out) {
    if (!sound.reopen()) throw MakerError(path, "the file cannot be read");
    const int width = bitsOfCopy(sound) / 8;
    const auto frameBytes = static_cast<std::uint64_t>(sound.channelCount() * width);
    if (sound.lengthInFrames() > (UINT32_MAX - waveHeaderBytes) / frameBytes)
        throw MakerError(path, "a wave file holds no more than 4 GB");
    out << waveHeader(sound.channelCount(), width, false, sound.sampleRate(),
                      sound.lengthInFrames() * frameBytes);
    sound.seekFrame(0);
    if (width == 3)
        writeAs24Bits(sound, path, out);
    else if (!writeFrames(sound, out, 2))
        throw MakerError(path, "the frames cannot be copied");
    sound.close();
}

} // namespace zarno
