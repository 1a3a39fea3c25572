// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EventQueue.h"

#include "platform/ThreadRole.h"

namespace zarno {

EventQueue::EventQueue()
    : ring_(std::make_unique<std::array<Slot, ringSize>>()) {
    for (std::size_t i = 0; i < ringSize; ++i)
        (*ring_)[i].turn.store(i, std::memory_order_relaxed);
}

void EventQueue::push(const EngineEvent& event) {
    // Once one caller has overflowed everybody appends to the list until it has been read: so that no
    // caller's later event gets ahead of its earlier ones.
    if (!overflowing_.load(std::memory_order_acquire) && pushToRing(event)) return;
    lock();
    overflow_.push_back(event);
    overflowing_.store(true, std::memory_order_release);
    unlock();
}

bool EventQueue::pushToRing(const EngineEvent& event) {
    std::size_t at = head_.load(std::memory_order_relaxed);
    for (;;) {
        Slot& slot = (*ring_)[at % ringSize];
        const std::size_t turn = slot.turn.load(std::memory_order_acquire);
        if (turn == at) {
            if (!head_.compare_exchange_weak(at, at + 1, std::memory_order_relaxed)) continue;
            slot.event = event;
            slot.turn.store(at + 1, std::memory_order_release);
            return true;
        }
        if (turn < at) return false; // still holds an event of the last round: full
        at = head_.load(std::memory_order_relaxed);
    }
}

bool EventQueue::popFromRing(EngineEvent& event) {
    Slot& slot = (*ring_)[tail_ % ringSize];
    if (slot.turn.load(std::memory_order_acquire) != tail_ + 1) return false;
    event = slot.event;
    slot.turn.store(tail_ + ringSize, std::memory_order_release);
    ++tail_;
    return true;
}

void EventQueue::moveTo(std::vector<EngineEvent>& events) {
    thread::mustBe(thread::audio);
    takeRing(events);
    // As long as the overflow stands, callers append to it: nothing gets ahead of it in the ring.
    if (overflowing_.load(std::memory_order_acquire) && tryLock()) takeOverflow(events);
}

void EventQueue::takeRing(std::vector<EngineEvent>& events) {
    EngineEvent event;
    while (popFromRing(event))
        events.push_back(event);
}

// Locked; unlocks.
void EventQueue::takeOverflow(std::vector<EngineEvent>& events) {
    takeRing(events);
    // A caller may still be filling a place that it took in the ring before the overflow began. What follows
    // that place is older than what overflowed, which waits for the next block then.
    if (tail_ != head_.load(std::memory_order_relaxed)) return unlock();
    scratch_.swap(overflow_);
    overflowing_.store(false, std::memory_order_release);
    unlock();
    events.insert(events.end(), scratch_.begin(), scratch_.end());
    scratch_.clear();
}

void EventQueue::clear() {
    thread::mustBe(thread::audio | thread::loading);
    std::vector<EngineEvent> forgotten;
    takeRing(forgotten);
    if (!overflowing_.load(std::memory_order_acquire)) return;
    lock();
    takeOverflow(forgotten);
}

void EventQueue::lock() {
    while (!tryLock()) {
    }
}

} // namespace zarno
