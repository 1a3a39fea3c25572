// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace zarno {

// Events from any number of threads to the one that renders. First in, first out for each caller; nothing is
// lost. push() takes a place in a bounded ring without a lock (D. Vyukov's bounded queue); when the ring is
// full, which takes thousands of events between two blocks, events go to an overflow list behind a spin lock
// that is held for one append. The list keeps its memory, so a warmed-up queue does not allocate.
class EventQueue {
  public:
    static constexpr std::size_t ringSize = 8192; // a power of two

    EventQueue();

    // [any]
    void push(const EngineEvent& event);

    // [audio] Appends all that waits to events. Never waits: while a caller appends to the
    // overflow list, what overflowed stays for the next time.
    void moveTo(std::vector<EngineEvent>& events);

    // [audio, loading] Forgets all that waits. Waits for callers that append.
    void clear();

  private:
    struct Slot {
        std::atomic<std::size_t> turn;
        EngineEvent event;
    };

    bool pushToRing(const EngineEvent& event);
    bool popFromRing(EngineEvent& event);
    void takeRing(std::vector<EngineEvent>& events);
    void takeOverflow(std::vector<EngineEvent>& events);
    bool tryLock() { return !locked_.test_and_set(std::memory_order_acquire); }
    void lock();
    void unlock() { locked_.clear(std::memory_order_release); }

    std::unique_ptr<std::array<Slot, ringSize>> ring_;
    std::atomic<std::size_t> head_{0}; // next place to write
    std::size_t tail_ = 0;             // next place to read, the rendering thread's
    std::atomic<bool> overflowing_{false};
    std::atomic_flag locked_ = ATOMIC_FLAG_INIT;
    std::vector<EngineEvent> overflow_; // guarded by locked_
    std::vector<EngineEvent> scratch_;  // the rendering thread's
};

} // namespace zarno
