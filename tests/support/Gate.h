// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zarno {

// A disk that reads nothing until it is let go.
class Gate {
  public:
    ~Gate() { open(); }
    void open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    void pass() {
        std::unique_lock lock(mutex_);
        ++waiting_;
        opened_.wait(lock, [&] { return open_; });
        --waiting_;
    }
    int waiting() const {
        const std::lock_guard lock(mutex_);
        return waiting_;
    }

  private:
    mutable std::mutex mutex_;
    std::condition_variable opened_;
    bool open_ = false;
    int waiting_ = 0;
};

// Looked for again and again, up to a limit that says "a hang, even on a machine under load".
template <typename Condition>
bool comesTrue(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

} // namespace zarno
