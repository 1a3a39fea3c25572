// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamServer.h"

#include "engine/ZZone.h"
#include "platform/Clock.h"
#include "platform/ThreadRole.h"

#include <algorithm>
#include <new>

namespace zarno {
namespace {

// One instrument's fills in a row, when others may be waiting too.
constexpr int fillsPerTurn = 32;

// Between two looks at whether the disk still moves.
constexpr unsigned longestStepMs = 100;

// Reads done by the disk thread, for whatever instrument.
std::atomic<std::uint64_t> diskProgress{0};

} // namespace

void StreamServer::pause() {
    thread::mustNotBe(thread::audio | thread::disk);
    pauses_.fetch_add(1, std::memory_order_acq_rel);
    const std::lock_guard untilDiskThreadIsOutside(serving_);
}

void StreamServer::resume() {
    pauses_.fetch_sub(1, std::memory_order_acq_rel);
    diskEvent_.signal();
}

void StreamServer::allocate(int voices, std::int32_t chunkFrames, bool sixteenBit) {
    thread::mustBe(thread::loading);
    const auto frames = static_cast<std::uint64_t>(chunkFrames);
    rings_ = std::vector<StreamRing>(static_cast<std::size_t>(voices));
    for (StreamRing& ring : rings_)
        for (StreamBuffer& buffer : ring.buffer)
            buffer.allocate(frames, sixteenBit);
    if (!staging_.allocate(voices > 0 ? frames : 0, 2, sixteenBit)) throw std::bad_alloc();
    waiting_.reserve(2 * rings_.size());
}

void StreamServer::beginBlock(bool offline, double renderedMs) {
    thread::mustBe(thread::audio);
    offline_ = offline;
    renderedMs_ = renderedMs;
}

void StreamServer::voiceStarted() {
    const int now = voices_.fetch_add(1, std::memory_order_relaxed) + 1;
    if (now > mostVoices_.load(std::memory_order_relaxed)) mostVoices_.store(now, std::memory_order_relaxed);
}

void StreamServer::voiceEnded() {
    voices_.fetch_sub(1, std::memory_order_relaxed);
}

void StreamServer::wakeDiskThread() {
    posts_.fetch_add(1, std::memory_order_relaxed);
    diskEvent_.signal();
}

bool StreamServer::awaitBuffer(const RefillSlot& slot) {
    thread::mustBe(thread::audio);
    return slot.isReady() || (offline_ && waitWhileDiskMoves(slot));
}

bool StreamServer::waitWhileDiskMoves(const RefillSlot& slot) {
    const double began = systemClock().nowMs();
    double movedAt = began;
    std::uint64_t progress = diskProgress.load(std::memory_order_relaxed);
    // Given up before, and still nothing moves: one dead disk delays a bounce once, not at every buffer.
    if (progress == stalledAt_) return false;
    while (!slot.isReady()) {
        filled_.wait(std::min(longestStepMs, static_cast<unsigned>(patience_.stallMs)));
        const double now = systemClock().nowMs();
        const std::uint64_t reached = diskProgress.load(std::memory_order_relaxed);
        if (reached != progress) movedAt = now;
        progress = reached;
        if (now - movedAt > patience_.stallMs || now - began > patience_.longestMs) {
            stalledAt_ = progress;
            return slot.isReady();
        }
    }
    return true;
}

void StreamServer::serve() {
    thread::mustBe(thread::disk);
    const std::lock_guard inside(serving_);
    int fills = 0;
    while (!isPaused()) {
        const std::uint64_t postsSeen = posts_.load(std::memory_order_relaxed);
        collectWaiting();
        if (waiting_.empty()) return;
        for (const Waiting& waiting : waiting_) {
            if (fills++ == fillsPerTurn) {
                diskEvent_.signal();
                return;
            }
            serveOne(waiting);
            // What has just been asked for may be more urgent than the rest.
            if (isPaused() || posts_.load(std::memory_order_relaxed) != postsSeen) break;
        }
    }
}

void StreamServer::collectWaiting() {
    waiting_.clear();
    for (StreamRing& ring : rings_)
        for (int half = 0; half < 2; ++half) {
            Waiting waiting{&ring, half, 0, {}};
            if (ring.slot[half].take(waiting.refill, waiting.ticket)) waiting_.push_back(waiting);
        }
    std::sort(waiting_.begin(), waiting_.end(),
              [](const Waiting& a, const Waiting& b) { return a.refill.dueMs < b.refill.dueMs; });
}

void StreamServer::serveOne(const Waiting& waiting) {
    StreamBuffer& buffer = waiting.ring->buffer[waiting.half];
    RefillSlot& slot = waiting.ring->slot[waiting.half];
    ZZone& zone = *waiting.refill.zone;
    const double began = systemClock().nowMs();

    ChunkTarget chunk{staging_.shorts(), buffer.frames(), zone.mono ? 1 : 2, buffer.isSixteenBit()};
    if (!chunk.sixteenBit) chunk.frame0 = staging_.floats();
    const ChunkResult result = fillChunk(zone, waiting.refill.frame, chunk, [&](std::size_t bytes) {
        diskProgress.fetch_add(1, std::memory_order_relaxed);
        bytesRead_.fetch_add(bytes, std::memory_order_relaxed);
        return !isPaused() && slot.isCurrent(waiting.ticket);
    });
    if (result == ChunkResult::Abandoned) return;
    if (result == ChunkResult::Filled) {
        writeSeamBefore(chunk);
        writeSeamBehind(chunk);
        buffer.write(chunk);
    }
    diskProgress.fetch_add(1, std::memory_order_relaxed);
    // Without a file the voice goes on with what the buffer holds.
    slot.complete(waiting.ticket);
    (result == ChunkResult::Filled ? refills_ : failedRefills_).fetch_add(1, std::memory_order_relaxed);
    readNs_.fetch_add(static_cast<std::uint64_t>((systemClock().nowMs() - began) * 1e6),
                      std::memory_order_relaxed);
    filled_.signal();
}

StreamStats StreamServer::stats() const {
    StreamStats stats;
    stats.voices = voices_.load(std::memory_order_relaxed);
    stats.mostVoices = mostVoices_.load(std::memory_order_relaxed);
    stats.refills = refills_.load(std::memory_order_relaxed);
    stats.lateRefills = lateRefills_.load(std::memory_order_relaxed);
    stats.failedRefills = failedRefills_.load(std::memory_order_relaxed);
    stats.bytesRead = bytesRead_.load(std::memory_order_relaxed);
    stats.readMs = static_cast<double>(readNs_.load(std::memory_order_relaxed)) / 1e6;
    return stats;
}

} // namespace zarno
