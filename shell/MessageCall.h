// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <functional>
#include <memory>

namespace zarno {

/// Work that any thread posts to the message thread and may abandon. A posted message keeps this object
/// alive, but not what the work refers to: the owner of that abandons the call in its destructor.
class MessageCall : public std::enable_shared_from_this<MessageCall> {
  public:
    static std::shared_ptr<MessageCall> make(std::function<void()> work) {
        return std::make_shared<MessageCall>(std::move(work));
    }

    /// [any] Does not wait. Several posts before the work starts run it once.
    void post();

    /// [any] After it returns the work neither runs nor will run: waits while the message thread runs it. The
    /// work must therefore not wait for a user. The work itself may call this.
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
