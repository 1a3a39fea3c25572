// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zarno {

/// The door between the disk threads and what they serve of one instrument: its zones and buffers. One
/// thread at a time is inside. During a read it touches nothing that it does not share, so that it can be
/// left behind when the system does not give the read back.
class StreamGate {
  public:
    using Patience = std::chrono::milliseconds;

    /// [disk] A thread's stay. The gate outlives it.
    class Visit {
      public:
        explicit Visit(StreamGate& gate);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        /// False when the gate was closed, or another thread was inside.
        bool isInside() const { return inside_; }
        void beginRead();
        /// False when this thread was left behind: it may not touch zones any more, and is to leave.
        bool endRead();

      private:
        friend class StreamGate;

        StreamGate& gate_;
        bool inside_ = false;
        bool reading_ = false, leftBehind_ = false; // guarded by the gate's mutex
    };

    /// [any but audio and disk] Nobody comes in until as many openings follow. Returns when the thread inside
    /// has left; or when it has been in a read for longer than `patience`, and then it is left behind.
    void close(Patience patience);
    void open() { closings_.fetch_sub(1, std::memory_order_acq_rel); }
    /// [any but audio and disk, closed] What a thread that was left behind may still read is nobody's any
    /// more: another thread may come in without waiting for it.
    void forgetVisitor();

    /// [any]
    bool isClosed() const { return closings_.load(std::memory_order_acquire) != 0; }
    bool isReading() const { return reading_.load(std::memory_order_relaxed); }

  private:
    std::atomic<int> closings_{0};
    std::atomic<bool> reading_{false};
    std::mutex mutex_; // never held for long
    std::condition_variable changed_;
    Visit* visit_ = nullptr; // the one inside
};

} // namespace zarno
