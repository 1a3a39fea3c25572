// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/ThreadRole.h"

#include <atomic>
#include <cstdint>

namespace zarno {

class ZZone;

/// What a voice asks the disk thread to read. It says everything that is needed: the disk thread keeps
/// nothing about a voice.
struct Refill {
    ZZone* zone = nullptr;   ///< none: what was asked before is no longer wanted
    std::uint64_t frame = 0; ///< of the sound file
    double dueMs = 0.0;      ///< when the voice will enter the buffer, in rendered time
};

/// The hand-over of one buffer between a voice and the disk thread. The voice posts; the disk thread takes,
/// fills and completes with the ticket it took. The buffer belongs to the voice while the newest ticket is
/// the completed one, and to the disk thread otherwise. A fill for an older ticket completes nothing that
/// counts, so a late one never passes for a newer one, and a post during a fill is served after it.
class RefillSlot {
  public:
    using Ticket = std::uint64_t;

    // [audio, loading] While the audio thread is kept out, a load ends the notes.
    void post(const Refill& refill) {
        thread::mustBe(thread::audio | thread::loading);
        const Ticket ticket = posted_.load(std::memory_order_relaxed);
        posted_.store(ticket + 1, std::memory_order_relaxed); // odd: being written
        // Each release makes the odd ticket seen by whoever sees the field.
        zone_.store(refill.zone, std::memory_order_release);
        frame_.store(refill.frame, std::memory_order_release);
        dueMs_.store(refill.dueMs, std::memory_order_release);
        posted_.store(ticket + 2, std::memory_order_release);
    }
    bool isReady() const {
        thread::mustBe(thread::audio | thread::loading);
        return done_.load(std::memory_order_acquire) == posted_.load(std::memory_order_relaxed);
    }
    void cancel() {
        if (!isReady()) post({});
    }

    // [disk] False when nothing waits, or when the voice is posting at this very moment: it signals then.
    bool take(Refill& refill, Ticket& ticket) const {
        thread::mustBe(thread::disk);
        ticket = posted_.load(std::memory_order_acquire);
        if (ticket % 2 != 0 || ticket == done_.load(std::memory_order_relaxed)) return false;
        refill.zone = zone_.load(std::memory_order_acquire);
        refill.frame = frame_.load(std::memory_order_acquire);
        refill.dueMs = dueMs_.load(std::memory_order_acquire);
        return isCurrent(ticket) && refill.zone != nullptr;
    }
    bool isCurrent(Ticket ticket) const {
        thread::mustBe(thread::disk);
        return posted_.load(std::memory_order_relaxed) == ticket;
    }
    void complete(Ticket ticket) {
        thread::mustBe(thread::disk);
        done_.store(ticket, std::memory_order_release);
    }

  private:
    std::atomic<Ticket> posted_{0}, done_{0};
    std::atomic<ZZone*> zone_{nullptr};
    std::atomic<std::uint64_t> frame_{0};
    std::atomic<double> dueMs_{0.0};
};

} // namespace zarno
