// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/ChunkFill.h"

#include "data/sound/SampleConvert.h"
#include "data/stream/StreamPoints.h"
#include "engine/ZZone.h"
#include "platform/Clock.h"
#include "platform/ThreadRole.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zarno {
namespace {

// A chunk of the usual length is one read; only long ones are cut, so that a fill can be given up.
constexpr std::uint64_t framesPerRead = 65536;

class Filler {
  public:
    Filler(ZSoundFile& sound, const ChunkTarget& target, const std::function<bool(std::size_t)>& goOn)
        : sound_(sound)
        , target_(target)
        , goOn_(goOn) {}

    // Chunk frames [to, to + count) from file frame `from` on. False when the fill is given up.
    bool read(std::uint64_t from, std::uint64_t to, std::uint64_t count);
    // Chunk frames [to, end) as copies of the `period` frames before them.
    void repeat(std::uint64_t period, std::uint64_t to);

  private:
    std::byte* at(std::uint64_t frame) {
        return static_cast<std::byte*>(target_.frame0) + frame * target_.frameBytes();
    }
    std::uint64_t readSome(std::byte* to, std::uint64_t count);

    ZSoundFile& sound_;
    const ChunkTarget& target_;
    const std::function<bool(std::size_t)>& goOn_;
};

std::uint64_t Filler::readSome(std::byte* to, std::uint64_t count) {
    if (target_.sixteenBit) return sound_.readShort(reinterpret_cast<std::int16_t*>(to), count);
    auto* values = reinterpret_cast<float*>(to);
    const std::uint64_t got = sound_.readFloat(values, count);
    convert::silenceNonFinite(values, static_cast<std::size_t>(got) * target_.channels);
    return got;
}

bool Filler::read(std::uint64_t from, std::uint64_t to, std::uint64_t count) {
    sound_.seekFrame(from);
    std::uint64_t done = 0;
    while (done < count) {
        const std::uint64_t got = readSome(at(to + done), std::min(framesPerRead, count - done));
        if (got == 0) break;
        done += got;
        if (!goOn_(static_cast<std::size_t>(got) * target_.frameBytes())) return false;
    }
    std::memset(at(to + done), 0, static_cast<std::size_t>(count - done) * target_.frameBytes());
    return true;
}

void Filler::repeat(std::uint64_t period, std::uint64_t to) {
    while (to < target_.frames) {
        const std::uint64_t count = std::min(period, target_.frames - to);
        std::memcpy(at(to), at(to - period), static_cast<std::size_t>(count) * target_.frameBytes());
        to += count;
    }
}

bool fill(Filler& filler, const StreamPoints& points, std::uint64_t frame, std::uint64_t chunk) {
    if (!points.wraps(frame, chunk)) return filler.read(frame, 0, chunk);
    const std::uint64_t untilLoopEnd = points.loopEnd > frame ? points.loopEnd - frame : 0;
    if (untilLoopEnd > 0 && !filler.read(frame, 0, untilLoopEnd)) return false;
    const std::uint64_t period = points.loopEnd - points.loopStart;
    const std::uint64_t once = std::min(period, chunk - untilLoopEnd);
    if (!filler.read(points.loopStart, untilLoopEnd, once)) return false;
    filler.repeat(period, untilLoopEnd + once);
    return true;
}

// False when the chunk is silence whatever the file holds.
bool needsFile(const StreamPoints& points, std::uint64_t frame, std::uint64_t chunk) {
    return frame < points.length || (points.wraps(frame, chunk) && points.loopStart < points.length);
}

} // namespace

ChunkResult fillChunk(ZSoundFile& sound, const StreamPoints& points, std::uint64_t frame,
                      const ChunkTarget& target, const std::function<bool(std::size_t)>& goOn) {
    thread::mustNotBe(thread::audio | thread::message);
    if (!needsFile(points, frame, target.frames)) {
        std::memset(target.frame0, 0, static_cast<std::size_t>(target.frames) * target.frameBytes());
        return ChunkResult::Filled;
    }
    if (!sound.reopen()) return ChunkResult::NoFile;
    Filler filler(sound, target, goOn);
    const bool whole = fill(filler, points, frame, target.frames);
    sound.close();
    return whole ? ChunkResult::Filled : ChunkResult::Abandoned;
}

void writeSeamBefore(const ChunkTarget& target) {
    const std::size_t frameBytes = target.frameBytes();
    auto* first = static_cast<std::byte*>(target.frame0);
    for (std::size_t guard = 1; guard <= SampleMemory::guardFrames; ++guard)
        std::memcpy(first - guard * frameBytes, first, frameBytes);
}

void writeSeamBehind(const ChunkTarget& target) {
    const std::size_t frameBytes = target.frameBytes();
    auto* last = static_cast<std::byte*>(target.frame0) + (target.frames - 1) * frameBytes;
    for (std::size_t guard = 1; guard <= SampleMemory::guardFrames; ++guard)
        std::memcpy(last + guard * frameBytes, last, frameBytes);
}

std::shared_ptr<SampleMemory> readPreload(ZZone& zone, bool sixteenBit, const std::function<bool()>& goOn) {
    thread::mustBe(thread::reader | thread::loading);
    const StreamPoints points(zone.record, zone.lengthInFrames);
    const auto chunk = static_cast<std::uint64_t>(zone.chunkFrames);
    // Behind a sample that ends within its first chunk there is only silence, which reads the same without
    // being kept.
    const std::uint64_t frames = points.loops ? chunk : points.available(points.start, chunk);
    auto memory = std::make_shared<SampleMemory>();
    if (!memory->allocate(frames, zone.mono ? 1 : 2, sixteenBit)) throw std::bad_alloc();
    if (frames == 0) return memory;

    ChunkTarget target{memory->shorts(), frames, memory->channels(), sixteenBit};
    if (!sixteenBit) target.frame0 = memory->floats();
    const auto goOnReading = [&](std::size_t) { return goOn(); };
    if (fillChunk(*zone.sound, points, points.start, target, goOnReading) != ChunkResult::Filled)
        return nullptr;
    zone.lastAccessMs.store(systemClock().nowMs(), std::memory_order_relaxed);
    writeSeamBefore(target);
    if (frames == chunk) writeSeamBehind(target);
    return memory;
}

} // namespace zarno
