// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "data/stream/HostLead.h"
#include "data/stream/RefillSlot.h"
#include "data/stream/StreamBuffer.h"
#include "data/stream/StreamGate.h"
#include "data/stream/StreamStats.h"
#include "data/stream/ZSEThreadClient.h"
#include "platform/AutoResetEvent.h"
#include "platform/Clock.h"

#include <memory>
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
///
/// The disk thread shares the server, the buffers and the sound files that it uses: a read that the system
/// does not give back is left behind with them, and finds them when it comes back.
class StreamServer final : public ZSEThreadClient {
  public:
    /// How long a voice waits for a buffer at the most: until the disk has read nothing for `stallMs`, and no
    /// longer than `longestMs`. How long a pause waits for a read to end.
    struct Patience {
        double stallMs = limits::stalledDiskMs;
        double longestMs = limits::offlineWaitMs;
        double readMs = limits::hungReadMs;
    };

    /// What the audio thread knows of the block that it begins.
    struct Block {
        bool offline = false;    ///< voices wait for their buffers, with or without a lead
        double renderedMs = 0.0; ///< the length of all blocks before it
        double lengthMs = 0.0;
    };

    /// `diskEvent` wakes the disk thread; `clock` is asked by the audio thread. Both outlive its last block.
    explicit StreamServer(AutoResetEvent& diskEvent, const Clock& clock = systemClock())
        : StreamServer(diskEvent, Patience(), clock) {}
    StreamServer(AutoResetEvent& diskEvent, Patience patience, const Clock& clock = systemClock())
        : diskEvent_(diskEvent)
        , patience_(patience)
        , clock_(clock) {}

    /// While one lives the disk thread is outside: no zone is looked at, no buffer written. Waits for a read
    /// at hand, and leaves it behind when it takes too long. Any thread but audio and disk.
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
    StreamRing& ring(int voice) { return buffers_->rings[static_cast<std::size_t>(voice)]; }
    /// [loading, paused] The zones that were served until now are going. Those that come next need not wait
    /// for a read that was left behind.
    void zonesChange() { gate_.forgetVisitor(); }

    /// [audio] At the start of each block.
    void beginBlock(const Block& block);
    double renderedMs() const { return block_.renderedMs; }
    void voiceStarted();
    void voiceEnded();
    void wakeDiskThread(); ///< after one or more posts
    /// True when the buffer may be entered. Offline it is waited for as long as the disk gets on; else for as
    /// long as the host is ahead of real time, which a live host never is.
    bool awaitBuffer(const RefillSlot& slot);
    void countLate() { lateRefills_.fetch_add(1, std::memory_order_relaxed); }

    /// [any] From hurry to takeTime no voice waits; a wait at hand ends. For those who wait for the audio
    /// thread meanwhile.
    void hurry();
    void takeTime() { hurries_.fetch_sub(1, std::memory_order_relaxed); }

    /// [disk] Serves what was asked for. Leaves early, with the event signalled, when other instruments ought
    /// to have their turn. Does nothing while another disk thread is still here.
    void serviceStreams() override;

    /// [any]
    StreamStats stats() const;

  private:
    // Shared with the thread that reads into them.
    struct Buffers {
        std::vector<StreamRing> rings;
        SampleMemory staging;
    };
    struct Waiting {
        StreamRing* ring;
        int half;
        RefillSlot::Ticket ticket;
        Refill refill;
    };

    void collectWaiting();
    bool serveOne(Waiting waiting, StreamGate::Visit& visit);
    ChunkResult readChunk(const Waiting& waiting, ZSoundFile& sound, const StreamPoints& points,
                          const ChunkTarget& chunk);
    void countRead(std::size_t bytes);
    bool waitWhileDiskMoves(const RefillSlot& slot, double longestMs);
    std::uint64_t signOfLife() const;

    AutoResetEvent& diskEvent_;
    const Patience patience_;
    const Clock& clock_;
    StreamGate gate_;
    std::shared_ptr<Buffers> buffers_ = std::make_shared<Buffers>();
    std::vector<Waiting> waiting_; // of the disk thread inside

    // Audio thread.
    Block block_;
    HostLead lead_;
    std::uint64_t stalledAt_ = ~std::uint64_t{0}; // our reads when a wait was given up
    AutoResetEvent filled_;

    std::atomic<int> hurries_{0};
    std::atomic<std::uint64_t> posts_{0}, reads_{0};
    std::atomic<int> voices_{0}, mostVoices_{0};
    std::atomic<std::uint64_t> refills_{0}, lateRefills_{0}, failedRefills_{0}, bytesRead_{0}, readNs_{0};
};

} // namespace zarno
