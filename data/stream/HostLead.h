// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <limits>

namespace zarno {

/// How far a host is ahead of real time, so that a bounce may wait for the disk in hosts that do not say that
/// they bounce. The lead is rendered time minus clock time, against its own minimum over the last two seconds:
/// pauses and the drift between two clocks do not count. A host that plays live has none; one that renders
/// ahead has in hand what it has rendered since that minimum. Audio thread.
class HostLead {
  public:
    HostLead() { least_.fill(unset); }

    /// At the start of a block of `blockMs`; `renderedMs`: the length of all blocks before it.
    void beginBlock(double renderedMs, double clockMs, double blockMs);

    /// How long the audio thread may wait within that block, in ms: the lead less one block and a margin.
    double waitMs(double clockMs) const;

  private:
    static constexpr double unset = std::numeric_limits<double>::infinity();
    static constexpr std::int64_t stepMs = 100, steps = 21; // two seconds, and the step at hand

    void moveTo(std::int64_t step);

    std::array<double, steps> least_; // of each step of the clock, in a ring
    std::int64_t step_ = 0;
    double renderedMs_ = 0.0, blockMs_ = 0.0, minimum_ = unset;
};

} // namespace zarno
