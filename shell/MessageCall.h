// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <functional>
#include <memory>

namespace zarno {

/// Work for the message thread that another thread asks for and may lose interest in. A message under way
/// holds the call alive, not those whom the work is about: they abandon it before they go.
class MessageCall : public std::enable_shared_from_this<MessageCall> {
  public:
    static std::shared_ptr<MessageCall> make(std::function<void()> work) {
        return std::make_shared<MessageCall>(std::move(work));
    }

    /// Any thread; waits for nobody. The work runs once for all posts up to its start.
    void post();

    /// Any thread. Afterwards the work does not run, now or later: waits for its end when another thread is in
    /// the middle of it. The work itself may do this too.
    void abandon();

    /// Use make.
    explicit MessageCall(std::function<void()> work)
        : work_(std::move(work)) {}

  private:
    void run();

    std::atomic<bool> posted_{false};
    juce::CriticalSection lock_; // held while the work runs
    std::function<void()> work_;
};

} // namespace zarno
