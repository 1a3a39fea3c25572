// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZEmbeddedSoundFile.h"
#include "data/sound/ZWaveFile.h"
#include "engine/Tables.h"
#include "platform/File.h"
#include "tools/check/InstrumentCheck.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <unordered_map>

namespace zarno {
namespace {

constexpr int loudest = 127;
constexpr double tolerance = 0.01; // dB: full scale itself is no fault

// The largest value of a sound.
float peakOf(ZSoundFile& sound) {
    std::vector<float> values(65536);
    const auto channels = static_cast<std::uint64_t>(std::max(1, sound.channelCount()));
    const bool asShort = sound.bytesPerSample() == 2;
    std::vector<std::int16_t> shorts(asShort ? values.size() : 0);
    float peak = 0.0f;
    sound.seekFrame(0);
    for (;;) {
        const std::uint64_t frames = asShort ? sound.readShort(shorts.data(), shorts.size() / channels)
                                             : sound.readFloat(values.data(), values.size() / channels);
        if (frames == 0) return peak;
        for (std::size_t i = 0; i < frames * channels; ++i) {
            const float value = asShort ? static_cast<float>(shorts[i]) / 32768.0f : values[i];
            if (std::isfinite(value)) peak = std::max(peak, std::abs(value));
        }
    }
}

std::string decibels(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%+.1f", value);
    return text;
}

class Peaks {
  public:
    explicit Peaks(const InstrumentReport& report)
        : report_(report)
        , file_(std::make_shared<const File>(report.path)) {}

    float of(const ZoneEntry& zone) {
        const auto [found, isNew] = peaks_.try_emplace(std::string(zone.sample.text()), 0.0f);
        if (isNew) found->second = read(zone);
        return found->second;
    }

  private:
    float read(const ZoneEntry& zone) const {
        const auto* sample = sampleOf(report_, zone);
        if (!sample || !sample->found) return 0.0f;
        if (report_.file.isEmbedded()) {
            ZEmbeddedSoundFile sound;
            return sound.open(sample->name, file_, report_.file.blocks[zone.block].position) ? peakOf(sound)
                                                                                             : 0.0f;
        }
        ZWaveFile wave;
        return wave.open(sample->path) ? peakOf(wave) : 0.0f;
    }

    const InstrumentReport& report_;
    std::shared_ptr<const File> file_;
    std::unordered_map<std::string, float> peaks_;
};

} // namespace

void checkLevels(const InstrumentReport& report, const std::function<void(double)>& progress,
                 Findings& findings) {
    const InstrumentFile& file = report.file;
    Peaks peaks(report);
    const double velocity = velocityGain(file.settings, loudest);
    for (std::size_t g = 0; g < file.groups.size(); ++g) {
        const GroupEntry& group = file.groups[g];
        for (std::size_t z = 0; z < group.zones.size(); ++z) {
            progress(
                (static_cast<double>(z) / static_cast<double>(group.zones.size()) + static_cast<double>(g)) /
                static_cast<double>(file.groups.size()));
            const ZoneRecord& zone = group.zones[z].record;
            const double peak = peaks.of(group.zones[z]);
            if (peak <= 0.0 || group.record.volume <= -30.0f) continue;
            const double level = 20.0 * std::log10(peak * (zone.ignoreVelocity != 0 ? 1.0 : velocity)) +
                                 zone.volume + group.record.volume + file.settings.volume;
            if (level > tolerance)
                findings.push_back({Finding::Severity::Warning, zonePlace(file, g, z),
                                    "its loudest note peaks at " + decibels(level) + " dB and is clipped"});
        }
    }
}

} // namespace zarno
