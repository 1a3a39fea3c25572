// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "data/sound/ZSoundFile.h"
#include "engine/Records.h"
#include "engine/ZZone.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

namespace zarno {

/// Makes zones from sound files and puts their frames into memory, in the width that the settings' 16-bit
/// flag asks for: whole samples, or of a streaming instrument the zones' preloads. Zones that need the same
/// frames share their memory for as long as the builder lives. Throws std::bad_alloc when a sample does not
/// fit into memory, and LimitExceeded when all of them together take more than `mostBytes`, or the preloads
/// more than limits::preloadBytes beyond their allowance. [reader, loading]
class ZoneBuilder {
  public:
    /// `goOn` is asked between the chunks of large samples; after a false the zone in hand is of no use, and
    /// wasStopped says so.
    explicit ZoneBuilder(const InstrumentSettings& settings, std::function<bool()> goOn = {},
                         std::uint64_t mostBytes = shareOfMemory())
        : settings_(settings)
        , goOn_(std::move(goOn))
        , mostBytes_(mostBytes)
        , bytesLeft_(mostBytes) {}

    bool wasStopped() const { return stopped_; }

    /// Both give a zone whose record holds what the sound file says; one that is not valid when the sound
    /// could not be opened. A streaming zone has no frames, and its wave file stays open, until
    /// recordChanged.
    std::unique_ptr<ZZone> fromWaveFile(const std::string& path);
    std::unique_ptr<ZZone> fromBlock(const std::string& sampleName, std::shared_ptr<const File> file,
                                     std::uint64_t position);

    /// To be called when the zone's record is complete: its points say which frames a preload holds. No wave
    /// file stays open.
    void recordChanged(ZZone& zone);

  private:
    static std::uint64_t shareOfMemory();
    const std::string& identityOf(const std::string& wavePath);
    void take(std::uint64_t bytes);
    std::unique_ptr<ZZone> build(std::unique_ptr<ZSoundFile> sound, const std::string& memoryKey);
    void fillMemory(ZZone& zone, const std::string& memoryKey);
    void countPreload(const ZZone& zone);
    std::shared_ptr<SampleMemory> readWhole(ZSoundFile& sound);
    bool askToGoOn();

    const InstrumentSettings& settings_;
    const std::function<bool()> goOn_;
    bool stopped_ = false;
    std::unordered_map<std::string, std::weak_ptr<SampleMemory>> shared_;
    std::unordered_map<std::string, std::string> identities_; // of wave files, by path
    const std::uint64_t mostBytes_;
    std::uint64_t bytesLeft_;
    std::uint64_t preloadBytes_ = 0, preloadAllowance_ = limits::preloadBytes;
};

/// The record of a new zone: range and levels at their start values, points and root note from the sound.
ZoneRecord recordFromSound(const ZSoundFile& sound);

/// Moves start, end and loop points into a sample of `frames` frames, each behind the one before it.
void clampPoints(ZoneRecord& record, std::uint64_t frames);

} // namespace zarno
