// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/SamplePeaks.h"

#include "data/sound/ZEmbeddedSoundFile.h"
#include "data/sound/ZWaveFile.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

SamplePeaks::Peak peakOf(ZSoundFile& sound) {
    std::vector<float> values(65536);
    const auto channels = static_cast<std::uint64_t>(std::max(1, sound.channelCount()));
    const bool asShort = sound.bytesPerSample() == 2;
    std::vector<std::int16_t> shorts(asShort ? values.size() : 0);
    float sides[2] = {};
    sound.seekFrame(0);
    for (;;) {
        const std::uint64_t frames = asShort ? sound.readShort(shorts.data(), shorts.size() / channels)
                                             : sound.readFloat(values.data(), values.size() / channels);
        if (frames == 0) return {sides[0], channels > 1 ? sides[1] : sides[0]};
        for (std::size_t i = 0; i < frames * channels; ++i) {
            const float value = asShort ? static_cast<float>(shorts[i]) / 32768.0f : values[i];
            float& side = sides[i % channels & 1];
            if (std::isfinite(value)) side = std::max(side, std::abs(value));
        }
    }
}

} // namespace

SamplePeaks::SamplePeaks(const InstrumentReport& report)
    : report_(report)
    , file_(std::make_shared<const File>(report.path)) {
    for (const auto& sample : report.samples)
        samples_.try_emplace(sample.name, &sample);
}

SamplePeaks::Peak SamplePeaks::of(const ZoneEntry& zone) {
    const auto [found, isNew] = peaks_.try_emplace(std::string(zone.sample.text()));
    if (!isNew) return found->second;
    const auto sample = samples_.find(found->first);
    if (sample != samples_.end() && sample->second->found) found->second = read(zone, *sample->second);
    return found->second;
}

SamplePeaks::Peak SamplePeaks::read(const ZoneEntry& zone, const InstrumentReport::Sample& sample) const {
    if (report_.file.isEmbedded()) {
        ZEmbeddedSoundFile sound;
        return sound.open(sample.name, file_, report_.file.blocks[zone.block].position) ? peakOf(sound)
                                                                                        : Peak();
    }
    ZWaveFile wave;
    return wave.open(sample.path) ? peakOf(wave) : Peak();
}

} // namespace zarno
