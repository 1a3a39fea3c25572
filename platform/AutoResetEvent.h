// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace zarno {

/// Wakes one waiting thread for each signal; a signal nobody waits for is kept, any number of them as one.
/// signal never blocks and takes no lock, so the audio thread may call it. Any thread may wait. What was
/// written before signal is seen after the wait that it ends.
class AutoResetEvent {
  public:
    /// `name` (8-bit text) names the Windows object for those who look at it with system tools; elsewhere it
    /// has no effect. Process and module are added to it: an equal name would mean one event for all hosts
    /// of the session. Throws std::bad_alloc when the system has none left.
    explicit AutoResetEvent(const char* name = nullptr);
    ~AutoResetEvent();
    AutoResetEvent(const AutoResetEvent&) = delete;
    AutoResetEvent& operator=(const AutoResetEvent&) = delete;

    void signal() noexcept;
    void wait() noexcept;
    /// False when `timeoutMs` passed without a signal; 0 only asks.
    bool wait(unsigned timeoutMs) noexcept;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace zarno
