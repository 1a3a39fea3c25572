// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZZone.h"

#include "engine/Interpolation.h"
#include "engine/ZGroup.h"
#include "platform/ThreadRole.h"

namespace zarno {

const ZoneGains& ZZone::gains(double sampleRate, std::uint32_t rateGeneration) {
    thread::mustBe(thread::audio);
    const std::uint32_t groupGeneration = group ? group->generation() : 0;
    const std::uint64_t stamp = (std::uint64_t{rateGeneration} << 32) | groupGeneration;
    if (stamp != gainsStamp_) {
        gains_ = computeZoneGains(record, group ? &group->record : nullptr, sampleRate);
        gainsStamp_ = stamp;
    }
    return gains_;
}

void ZZone::readFrame(std::int64_t index, float& left, float& right) const {
    left = right = 0.0f;
    if (!memory || index < 0 || static_cast<std::uint64_t>(index) >= memory->frames()) return;
    const int channels = memory->channels();
    const std::int64_t at = index * channels;
    if (memory->isSixteenBit()) {
        left = static_cast<float>(memory->shorts()[at]) * sixteenBitScale;
        right = channels > 1 ? static_cast<float>(memory->shorts()[at + 1]) * sixteenBitScale : left;
    } else {
        left = memory->floats()[at];
        right = channels > 1 ? memory->floats()[at + 1] : left;
    }
}

} // namespace zarno
