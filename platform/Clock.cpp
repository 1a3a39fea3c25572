// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Clock.h"

#include <chrono>

namespace zarno {
namespace {

// Not timeGetTime: that steps by up to 16 ms and starts again from 0 after 49 days.
class SteadyClock final : public Clock {
  public:
    double nowMs() const override {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double, std::milli>(now).count();
    }
};

} // namespace

const Clock& systemClock() {
    static const SteadyClock clock;
    return clock;
}

} // namespace zarno
