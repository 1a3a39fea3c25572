// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ActivityMeter.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr double peakUnit = 16384.0, cpuUnit = 10000.0; // of the 16 bits of each

std::uint64_t packed(double value, double unit) {
    return static_cast<std::uint64_t>(std::clamp(value * unit, 0.0, 65535.0));
}

} // namespace

ActivityMeter::Block::~Block() {
    const int frames = audio_.getNumSamples();
    if (frames <= 0 || sampleRate_ <= 0.0) return;
    const double seconds = frames / sampleRate_;
    const double busy = juce::Time::highResolutionTicksToSeconds(juce::Time::getHighResolutionTicks() - start_);
    const double smoothing = std::min(1.0, seconds / 0.3);
    float peak = 0.0f;
    for (int channel = 0; channel < std::min(2, audio_.getNumChannels()); ++channel)
        peak = std::max(peak, audio_.getMagnitude(channel, 0, frames));
    meter_.peak_ = std::max(peak, meter_.peak_ * static_cast<float>(std::pow(0.1, seconds / 0.75)));
    meter_.cpu_ += (busy / seconds - meter_.cpu_) * smoothing;
    meter_.published_.store(std::uint64_t{++meter_.blocks_} << 32 | packed(meter_.cpu_, cpuUnit) << 16 |
                                packed(meter_.peak_, peakUnit),
                            std::memory_order_relaxed);
}

ActivityMeter::Reading ActivityMeter::read() const {
    const auto word = published_.load(std::memory_order_relaxed);
    return {static_cast<float>(static_cast<double>(word & 0xFFFF) / peakUnit),
            static_cast<double>(word >> 16 & 0xFFFF) / cpuUnit, static_cast<std::uint32_t>(word >> 32)};
}

} // namespace zarno
