// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamServer.h"

#include "data/stream/DiskThread.h"
#include "data/stream/StreamPoints.h"
#include "engine/ZZone.h"
#include "platform/Clock.h"
#include "platform/ThreadRole.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace zarno {
namespace {

// One instrument's fills in a row, when others may be waiting too.
constexpr int fillsPerTurn = 32;

// Between two looks at whether the disk still moves.
constexpr double longestStepMs = 100.0;

} // namespace

void StreamServer::pause() {
    gate_.close(StreamGate::Patience(static_cast<int>(patience_.readMs)));
}

void StreamServer::resume() {
    gate_.open();
    diskEvent_.signal();
}

void StreamServer::allocate(int voices, std::int32_t chunkFrames, bool sixteenBit) {
    thread::mustBe(thread::loading);
    const auto frames = static_cast<std::uint64_t>(chunkFrames);
    buffers_ = std::make_shared<Buffers>();
    buffers_->rings = std::vector<StreamRing>(static_cast<std::size_t>(voices));
    for (StreamRing& ring : buffers_->rings)
        for (StreamBuffer& buffer : ring.buffer)
            buffer.allocate(frames, sixteenBit);
    if (!buffers_->staging.allocate(voices > 0 ? frames : 0, 2, sixteenBit)) throw std::bad_alloc();
    waiting_.reserve(2 * buffers_->rings.size());
}

void StreamServer::beginBlock(const Block& block) {
    thread::mustBe(thread::audio);
    block_ = block;
    lead_.beginBlock(block.renderedMs, clock_.nowMs(), block.lengthMs);
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
    if (slot.isReady()) return true;
    const double longestMs = block_.offline ? patience_.longestMs : lead_.waitMs(clock_.nowMs());
    return longestMs > 0.0 && waitWhileDiskMoves(slot, std::min(longestMs, patience_.longestMs));
}

void StreamServer::hurry() {
    hurries_.fetch_add(1, std::memory_order_relaxed);
    filled_.signal();
}

// Changes as long as the disk gets on: with our own read while there is one, else with those before us.
std::uint64_t StreamServer::signOfLife() const {
    constexpr std::uint64_t ours = std::uint64_t{1} << 63;
    return gate_.isReading() ? ours | reads_.load(std::memory_order_relaxed) : DiskThread::reads();
}

bool StreamServer::waitWhileDiskMoves(const RefillSlot& slot, double longestMs) {
    // Given up before, and nothing was read for us since: one dead disk delays a bounce once, not at every
    // buffer.
    if (reads_.load(std::memory_order_relaxed) == stalledAt_) return false;
    const double began = systemClock().nowMs();
    double now = began, movedAt = began;
    std::uint64_t seen = signOfLife();
    while (!slot.isReady() && hurries_.load(std::memory_order_relaxed) == 0 && now - began < longestMs) {
        const double stepMs = std::min({longestMs - (now - began), patience_.stallMs, longestStepMs});
        filled_.wait(static_cast<unsigned>(std::ceil(stepMs)));
        now = systemClock().nowMs();
        if (const std::uint64_t sign = signOfLife(); sign != seen) {
            seen = sign;
            movedAt = now;
        }
        if (now - movedAt > patience_.stallMs || now - began >= patience_.longestMs) {
            stalledAt_ = reads_.load(std::memory_order_relaxed);
            break;
        }
    }
    return slot.isReady();
}

void StreamServer::serviceStreams() {
    StreamGate::Visit visit(gate_);
    int fills = 0;
    while (visit.isInside() && !gate_.isClosed()) {
        const std::uint64_t postsSeen = posts_.load(std::memory_order_relaxed);
        collectWaiting();
        if (waiting_.empty()) return;
        for (const Waiting& waiting : waiting_) {
            if (fills++ == fillsPerTurn) {
                diskEvent_.signal();
                return;
            }
            if (!serveOne(waiting, visit)) return;
            // What has just been asked for may be more urgent than the rest.
            if (gate_.isClosed() || posts_.load(std::memory_order_relaxed) != postsSeen) break;
        }
    }
}

void StreamServer::collectWaiting() {
    waiting_.clear();
    for (StreamRing& ring : buffers_->rings)
        for (int half = 0; half < 2; ++half) {
            Waiting waiting{&ring, half, 0, {}};
            if (ring.slot[half].take(waiting.refill, waiting.ticket)) waiting_.push_back(waiting);
        }
    std::sort(waiting_.begin(), waiting_.end(),
              [](const Waiting& a, const Waiting& b) { return a.refill.dueMs < b.refill.dueMs; });
}

// False when this thread was left behind in the read: others work here now. So nothing is referred to during
// the read that is not held here.
bool StreamServer::serveOne(Waiting waiting, StreamGate::Visit& visit) {
    const std::shared_ptr<Buffers> buffers = buffers_;
    ZZone& zone = *waiting.refill.zone;
    const std::shared_ptr<ZSoundFile> sound = zone.sound;
    const StreamPoints points(zone.record, zone.lengthInFrames);
    StreamBuffer& buffer = waiting.ring->buffer[waiting.half];
    SampleMemory& staging = buffers->staging;
    ChunkTarget chunk{staging.shorts(), buffer.frames(), zone.mono ? 1 : 2, buffer.isSixteenBit()};
    if (!chunk.sixteenBit) chunk.frame0 = staging.floats();

    const double began = systemClock().nowMs();
    visit.beginRead();
    const ChunkResult result = readChunk(waiting, *sound, points, chunk);
    if (!visit.endRead()) return false;
    if (result == ChunkResult::Abandoned) return true;
    if (result == ChunkResult::Filled) {
        zone.lastAccessMs.store(systemClock().nowMs(), std::memory_order_relaxed);
        writeSeamBefore(chunk);
        writeSeamBehind(chunk);
        buffer.write(chunk);
    }
    countRead(0);
    // Without a file the voice goes on with what the buffer holds.
    waiting.ring->slot[waiting.half].complete(waiting.ticket);
    (result == ChunkResult::Filled ? refills_ : failedRefills_).fetch_add(1, std::memory_order_relaxed);
    readNs_.fetch_add(static_cast<std::uint64_t>((systemClock().nowMs() - began) * 1e6),
                      std::memory_order_relaxed);
    filled_.signal();
    return true;
}

ChunkResult StreamServer::readChunk(const Waiting& waiting, ZSoundFile& sound, const StreamPoints& points,
                                    const ChunkTarget& chunk) {
    const RefillSlot& slot = waiting.ring->slot[waiting.half];
    return fillChunk(sound, points, waiting.refill.frame, chunk, [&](std::size_t bytes) {
        countRead(bytes);
        return !gate_.isClosed() && slot.isCurrent(waiting.ticket);
    });
}

void StreamServer::countRead(std::size_t bytes) {
    DiskThread::countRead();
    reads_.fetch_add(1, std::memory_order_relaxed);
    bytesRead_.fetch_add(bytes, std::memory_order_relaxed);
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
