// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace zarno {

/// Milliseconds that never run backwards, from an origin of the clock's own. Any thread may ask.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual double nowMs() const = 0;
};

/// The system's steady clock. Lives as long as the process.
const Clock& systemClock();

/// A clock that somebody else moves: offline rendering (from rendered samples) and tests.
class ManualClock final : public Clock {
  public:
    explicit ManualClock(double startMs = 0.0)
        : ms_(startMs) {}

    double nowMs() const override { return ms_.load(std::memory_order_relaxed); }
    void set(double ms) { ms_.store(ms, std::memory_order_relaxed); }
    void advance(double ms) { set(nowMs() + ms); }

  private:
    std::atomic<double> ms_;
};

} // namespace zarno
