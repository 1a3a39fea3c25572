// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/ZoneBuilder.h"

#include "data/load/LoadProblem.h"
#include "data/sound/SampleConvert.h"
#include "data/sound/ZEmbeddedSoundFile.h"
#include "data/sound/ZWaveFile.h"
#include "data/stream/ChunkFill.h"
#include "data/stream/StreamPoints.h"
#include "platform/Machine.h"
#include "platform/ThreadRole.h"

#include <algorithm>
#include <new>

namespace zarno {
namespace {

constexpr float newZoneRelease = 100.0f; // ms
constexpr std::uint64_t megabyte = 1000000;
constexpr std::uint64_t floatChunk = 16384; // frames read at a time: what stays in the cache
constexpr std::uint64_t shortChunk = 262144;

std::uint64_t readChunk(ZSoundFile& sound, SampleMemory& memory, std::uint64_t from) {
    const std::uint64_t offset = from * static_cast<std::uint64_t>(memory.channels());
    const std::uint64_t left = memory.frames() - from;
    if (memory.isSixteenBit()) return sound.readShort(memory.shorts() + offset, std::min(shortChunk, left));
    const std::uint64_t got = sound.readFloat(memory.floats() + offset, std::min(floatChunk, left));
    convert::silenceNonFinite(memory.floats() + offset,
                              static_cast<std::size_t>(got) * static_cast<std::size_t>(memory.channels()));
    return got;
}

// All that decides what a preload of this sound holds.
std::string preloadKey(const std::string& sound, const ZZone& zone) {
    const StreamPoints points(zone.record, zone.lengthInFrames);
    std::string key = sound + '\0' + std::to_string(points.start);
    if (points.wraps(points.start, static_cast<std::uint64_t>(zone.chunkFrames)))
        key += ' ' + std::to_string(points.loopStart) + ' ' + std::to_string(points.loopEnd);
    return key;
}

bool fits(const SampleMemory& memory, const ZSoundFile& sound) {
    return memory.frames() == sound.lengthInFrames() && memory.channels() == sound.channelCount();
}

} // namespace

ZoneRecord recordFromSound(const ZSoundFile& sound) {
    ZoneRecord record;
    record.release = newZoneRelease;
    record.endFrame = std::max<std::uint64_t>(sound.lengthInFrames(), 1) - 1;
    record.loopEnd = record.endFrame;
    if (sound.hasLoop()) {
        record.loopMode = static_cast<std::int32_t>(LoopMode::Loop);
        record.loopStart = sound.loopStart();
        record.loopEnd = sound.loopEnd();
    }
    if (sound.hasRootNote()) record.rootKey = sound.rootNote();
    return record;
}

void clampPoints(ZoneRecord& record, std::uint64_t frames) {
    const std::uint64_t last = std::max<std::uint64_t>(frames, 1) - 1;
    record.endFrame = std::min(record.endFrame, last);
    record.startFrame = std::min(record.startFrame, last);
    record.endFrame = std::max<std::uint64_t>(record.endFrame, 1); // on purpose also for a single frame
    if (record.startFrame >= record.endFrame) record.startFrame = record.endFrame - 1;
    record.loopEnd = std::min(record.loopEnd, record.endFrame);
    record.loopStart = std::max(record.loopStart, record.startFrame);
    record.loopEnd = std::max<std::uint64_t>(record.loopEnd, 1);
    if (record.loopStart >= record.loopEnd) record.loopStart = record.loopEnd - 1;
}

std::uint64_t ZoneBuilder::shareOfMemory() {
    const std::uint64_t all = physicalMemory();
    return all == 0 ? UINT64_MAX : all / 100 * limits::memoryPercent;
}

// Before memory is asked for: systems promise more than they have, and then end the program that believes
// them.
void ZoneBuilder::take(std::uint64_t bytes) {
    if (bytes > bytesLeft_) throw LimitExceeded(mostBytes_ / megabyte, "megabytes of memory for its samples");
    bytesLeft_ -= bytes;
}

// An instrument can name one file in many ways, a.wav and .\a.wav: it is read once for all of them.
const std::string& ZoneBuilder::identityOf(const std::string& wavePath) {
    const auto [known, isNew] = identities_.try_emplace(wavePath);
    if (isNew) known->second = fileIdentity(wavePath);
    if (known->second.empty()) known->second = wavePath;
    return known->second;
}

std::unique_ptr<ZZone> ZoneBuilder::fromWaveFile(const std::string& path) {
    thread::mustBe(thread::reader | thread::loading);
    auto sound = std::make_unique<ZWaveFile>();
    sound->open(path);
    auto zone = build(std::move(sound), identityOf(path));
    if (!zone->streaming) zone->sound->close();
    return zone;
}

std::unique_ptr<ZZone> ZoneBuilder::fromBlock(const std::string& sampleName, std::shared_ptr<const File> file,
                                              std::uint64_t position) {
    thread::mustBe(thread::reader | thread::loading);
    auto sound = std::make_unique<ZEmbeddedSoundFile>();
    sound->open(sampleName, std::move(file), position);
    // No path holds a zero byte, so that a block is never taken for a file.
    return build(std::move(sound), std::string(1, '\0') + std::to_string(position));
}

std::unique_ptr<ZZone> ZoneBuilder::build(std::unique_ptr<ZSoundFile> sound, const std::string& memoryKey) {
    auto zone = std::make_unique<ZZone>();
    zone->sound = std::move(sound);
    zone->mono = zone->sound->channelCount() == 1;
    if (!zone->sound->isOpen()) return zone;
    zone->record = recordFromSound(*zone->sound);
    zone->lengthInFrames = zone->sound->lengthInFrames();
    if (zone->sound->sampleRate() > 0) zone->fileSampleRate = zone->sound->sampleRate();
    zone->streaming = settings_.streaming != 0;
    if (zone->streaming)
        zone->chunkFrames = chunkFramesInUse(settings_);
    else
        fillMemory(*zone, memoryKey);
    zone->valid = true;
    return zone;
}

void ZoneBuilder::fillMemory(ZZone& zone, const std::string& memoryKey) {
    auto& known = shared_[memoryKey];
    zone.memory = known.lock();
    if (zone.memory && fits(*zone.memory, *zone.sound)) return;
    zone.memory = readWhole(*zone.sound);
    known = zone.memory;
}

std::shared_ptr<SampleMemory> ZoneBuilder::readWhole(ZSoundFile& sound) {
    auto memory = std::make_shared<SampleMemory>();
    const bool sixteenBit = settings_.sixteenBit != 0;
    const std::uint64_t frameBytes =
        (sixteenBit ? 2u : 4u) * static_cast<std::uint64_t>(sound.channelCount());
    take(sound.lengthInFrames() > UINT64_MAX / frameBytes ? UINT64_MAX : sound.lengthInFrames() * frameBytes);
    if (!memory->allocate(sound.lengthInFrames(), sound.channelCount(), sixteenBit)) throw std::bad_alloc();
    sound.seekFrame(0);
    for (std::uint64_t done = 0; done < memory->frames();) {
        const std::uint64_t got = readChunk(sound, *memory, done);
        done += got;
        if (got == 0 || (done < memory->frames() && !askToGoOn())) break;
    }
    return memory;
}

bool ZoneBuilder::askToGoOn() {
    stopped_ = stopped_ || (goOn_ && !goOn_());
    return !stopped_;
}

void ZoneBuilder::recordChanged(ZZone& zone) {
    thread::mustBe(thread::reader | thread::loading);
    if (!zone.streaming) return;
    const auto wave = identities_.find(zone.sound->path());
    auto& known = shared_[preloadKey(wave == identities_.end() ? zone.sound->path() : wave->second, zone)];
    zone.memory = known.lock();
    if (!zone.memory) {
        zone.memory = readPreload(zone, settings_.sixteenBit != 0, [this] { return askToGoOn(); });
        if (zone.memory) countPreload(zone);
        known = zone.memory;
    }
    zone.sound->close();
}

// Loops are unrolled in a preload: with very long chunks a file of a few kilobytes could ask for any number
// of gigabytes. What the sample itself would take several times over, or a second of sound, is always
// granted.
void ZoneBuilder::countPreload(const ZZone& zone) {
    const SampleMemory& preload = *zone.memory;
    const std::uint64_t frameBytes = preload.frames() == 0 ? 0 : preload.bytes() / preload.frames();
    preloadAllowance_ += std::max(limits::preloadFrames, 4 * zone.lengthInFrames) * frameBytes;
    preloadBytes_ += preload.bytes();
    take(preload.bytes());
    if (preloadBytes_ > preloadAllowance_)
        throw LimitExceeded(preloadAllowance_ / megabyte,
                            "megabytes of memory for the first parts of its samples");
}

} // namespace zarno
