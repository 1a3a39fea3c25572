// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/ZoneBuilder.h"

#include "data/sound/ZEmbeddedSoundFile.h"
#include "data/sound/ZWaveFile.h"

#include <algorithm>
#include <bit>
#include <new>

namespace zarno {
namespace {

constexpr float newZoneRelease = 100.0f; // ms
constexpr std::uint64_t chunkFrames = 16384;

// Infinities and NaN, told by their exponent of all ones.
void silenceNonFinite(float* values, std::size_t count) {
    constexpr std::uint32_t exponent = 0x7F800000u;
    for (std::size_t i = 0; i < count; ++i) {
        const auto bits = std::bit_cast<std::uint32_t>(values[i]);
        values[i] = (bits & exponent) == exponent ? 0.0f : values[i];
    }
}

void readFloats(ZSoundFile& sound, SampleMemory& memory) {
    const auto channels = static_cast<std::uint64_t>(memory.channels());
    for (std::uint64_t done = 0; done < memory.frames();) {
        float* chunk = memory.floats() + done * channels;
        const std::uint64_t got = sound.readFloat(chunk, std::min(chunkFrames, memory.frames() - done));
        if (got == 0) return;
        silenceNonFinite(chunk, static_cast<std::size_t>(got * channels)); // while it is in the cache
        done += got;
    }
}

std::shared_ptr<SampleMemory> readWhole(ZSoundFile& sound, bool sixteenBit) {
    auto memory = std::make_shared<SampleMemory>();
    if (!memory->allocate(sound.lengthInFrames(), sound.channelCount(), sixteenBit)) throw std::bad_alloc();
    sound.seekFrame(0);
    if (sixteenBit)
        sound.readShort(memory->shorts(), memory->frames());
    else
        readFloats(sound, *memory);
    return memory;
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

std::unique_ptr<ZZone> ZoneBuilder::fromWaveFile(const std::string& path) {
    auto sound = std::make_unique<ZWaveFile>();
    sound->open(path);
    auto zone = build(std::move(sound), path);
    zone->sound->close();
    return zone;
}

std::unique_ptr<ZZone> ZoneBuilder::fromBlock(const std::string& sampleName, std::shared_ptr<const File> file,
                                              std::uint64_t position) {
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
    fillMemory(*zone, memoryKey);
    zone->valid = true;
    return zone;
}

// Streaming instruments, too, are held in memory whole for now: here a zone's first chunk would be read
// instead, and in recordChanged once more.
void ZoneBuilder::fillMemory(ZZone& zone, const std::string& memoryKey) {
    auto& known = shared_[memoryKey];
    zone.memory = known.lock();
    if (zone.memory && fits(*zone.memory, *zone.sound)) return;
    zone.memory = readWhole(*zone.sound, settings_.sixteenBit != 0);
    known = zone.memory;
}

void ZoneBuilder::recordChanged(ZZone&) {}

} // namespace zarno
