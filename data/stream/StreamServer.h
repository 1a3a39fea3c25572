// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/RefillSlot.h"
#include "data/stream/StreamBuffer.h"
#include "data/stream/StreamStats.h"
#include "platform/AutoResetEvent.h"

#include <mutex>
#include <vector>

namespace zarno {

/// The two buffers of one voice.
struct StreamRing {
    StreamBuffer buffer[2];
    RefillSlot slot[2];
};

/// The meeting place of an instrument's streaming voices and the disk thread: holds the voices' buffers,
/// fills those that were asked for, the most urgent first, and counts. No lock is ever taken by the audio
/// thread.
class StreamServer {
  public:
    /// How long an offline voice waits for a buffer: until the disk has read nothing for `stallMs`, and no
    /// longer than `longestMs`.
    struct Patience {
        double stallMs = 10000.0;
        double longestMs = 120000.0;
    };

    /// `diskEvent` wakes the disk thread and outlives the server.
    explicit StreamServer(AutoResetEvent& diskEvent)
        : StreamServer(diskEvent, Patience()) {}
    StreamServer(AutoResetEvent& diskEvent, Patience patience)
        : diskEvent_(diskEvent)
        , patience_(patience) {}

    /// While one lives the disk thread is outside: no zone is read, no buffer written. Any thread but audio
    /// and disk.
    class Pause {
      public:
        explicit Pause(StreamServer& server)
            : server_(server) {
            server_.pause();
        }
        ~Pause() { server_.resume(); }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

      private:
        StreamServer& server_;
    };
    void pause();
    void resume();

    /// [loading, paused] Buffers for as many voices; none may play on those held before. Throws
    /// std::bad_alloc.
    void allocate(int voices, std::int32_t chunkFrames, bool sixteenBit);
    StreamRing& ring(int voice) { return rings_[static_cast<std::size_t>(voice)]; }

    /// [audio] At the start of each block. Offline, voices wait for their buffers.
    void beginBlock(bool offline, double renderedMs);
    double renderedMs() const { return renderedMs_; }
    void voiceStarted();
    void voiceEnded();
    void wakeDiskThread(); ///< after one or more posts
    /// True when the buffer may be entered. Real time: says how it stands. Offline: waits for as long as the
    /// disk gets on, up to a limit.
    bool awaitBuffer(const RefillSlot& slot);
    void countLate() { lateRefills_.fetch_add(1, std::memory_order_relaxed); }

    /// [disk] Serves what was asked for. Leaves early, with the event signalled, when other instruments ought
    /// to have their turn.
    void serve();

    /// [any]
    StreamStats stats() const;

  private:
    struct Waiting {
        StreamRing* ring;
        int half;
        RefillSlot::Ticket ticket;
        Refill refill;
    };

    bool isPaused() const { return pauses_.load(std::memory_order_acquire) != 0; }
    void collectWaiting();
    void serveOne(const Waiting& waiting);
    bool waitWhileDiskMoves(const RefillSlot& slot);

    AutoResetEvent& diskEvent_;
    const Patience patience_;
    std::vector<StreamRing> rings_;

    // Disk thread, inside serving_.
    std::mutex serving_;
    SampleMemory staging_;
    std::vector<Waiting> waiting_;
    std::atomic<int> pauses_{0};

    // Audio thread.
    bool offline_ = false;
    double renderedMs_ = 0.0;
    std::uint64_t stalledAt_ = ~std::uint64_t{0}; // the disk's progress when a wait was given up
    AutoResetEvent filled_;

    std::atomic<std::uint64_t> posts_{0};
    std::atomic<int> voices_{0}, mostVoices_{0};
    std::atomic<std::uint64_t> refills_{0}, lateRefills_{0}, failedRefills_{0}, bytesRead_{0}, readNs_{0};
};

} // namespace zarno
