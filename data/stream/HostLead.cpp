// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/HostLead.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

// For the host's own work on the block, and for the threads to wake up.
constexpr double marginMs = 10.0;

} // namespace

// Steps without a block, and all of them when the clock was set back, hold no minimum.
void HostLead::moveTo(std::int64_t step) {
    const bool allStale = step < step_ || step - step_ >= steps;
    for (std::int64_t stale = allStale ? step - steps + 1 : step_ + 1; stale <= step; ++stale)
        least_[static_cast<std::size_t>(((stale % steps) + steps) % steps)] = unset;
    step_ = step;
}

void HostLead::beginBlock(double renderedMs, double clockMs, double blockMs) {
    renderedMs_ = renderedMs;
    blockMs_ = blockMs;
    const auto step = static_cast<std::int64_t>(std::floor(clockMs / stepMs));
    if (step != step_) moveTo(step);
    double& least = least_[static_cast<std::size_t>(((step % steps) + steps) % steps)];
    least = std::min(least, renderedMs - clockMs);
    minimum_ = *std::min_element(least_.begin(), least_.end());
}

double HostLead::waitMs(double clockMs) const {
    const double lead = renderedMs_ - clockMs - minimum_;
    return std::max(lead - blockMs_ - marginMs, 0.0);
}

} // namespace zarno
