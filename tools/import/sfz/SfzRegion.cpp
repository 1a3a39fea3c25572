// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzRegion.h"

#include "tools/import/sfz/SfzCrossfade.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr int highestKey = 127;

class RegionReader {
  public:
    RegionReader(SfzOpcodes& opcodes, const SfzControl& control, const SoundFileInfo& sound,
                 const std::string& place, ImportReport& report)
        : opcodes_(opcodes)
        , control_(control)
        , sound_(sound)
        , report_(report) {
        region_.zone.place = place;
    }

    std::optional<SfzRegion> read();

  private:
    bool ranges();
    void narrowByCrossfade();
    void keyCrossfades();
    void pitch();
    void wholeSemitones();
    bool points();
    void loop();
    void exclusive();
    SfzOpcodes& opcodes_;
    const SfzControl& control_;
    const SoundFileInfo& sound_;
    ImportReport& report_;
    SfzRegion region_;
};

bool RegionReader::ranges() {
    ImportedZone& zone = region_.zone;
    const int low = opcodes_.key("lokey").value_or(0), high = opcodes_.key("hikey").value_or(highestKey);
    if (high < 0) {
        report_.add("region that no key plays", "left out", zone.place);
        return false;
    }
    // A shift does not take keys away at the ends.
    zone.keys.low = low <= 0 ? 0 : low + control_.noteOffset;
    zone.keys.high = high >= highestKey ? highestKey : high + control_.noteOffset;
    zone.velocities.low = opcodes_.integer("lovel", 0);
    zone.velocities.high = opcodes_.integer("hivel", 127);
    narrowByCrossfade();
    keyCrossfades();
    zone.keys = {std::max(zone.keys.low, 0), std::min(zone.keys.high, highestKey)};
    zone.velocities = {std::max(zone.velocities.low, 0), std::min(zone.velocities.high, 127)};
    return true;
}

// Velocities at which a crossfade is silence are none of the zone's.
void RegionReader::narrowByCrossfade() {
    ImportedRange& range = region_.zone.velocities;
    const auto fade = sfzCrossfade(opcodes_, "vel", 0);
    if (fade.in) range.low = std::max(range.low, fade.in->low + (fade.in->low < fade.in->high ? 1 : 0));
    if (fade.out)
        range.high = std::min(range.high, fade.out->high - (fade.out->low < fade.out->high ? 1 : 0));
}

void RegionReader::keyCrossfades() {
    const auto fade = sfzCrossfade(opcodes_, "key", control_.noteOffset);
    if (!fade.in && !fade.out) return;
    ImportedGains gains;
    for (int key = 0; key <= highestKey; ++key)
        gains[static_cast<std::size_t>(key)] = static_cast<float>(fade.decibelsAt(key));
    region_.zone.keyGains = std::make_shared<const ImportedGains>(gains);
}

void RegionReader::pitch() {
    ImportedZone& zone = region_.zone;
    if (opcodes_.text("pitch_keycenter") == "sample") {
        zone.rootKey = sound_.rootKey.value_or(60);
        zone.tune = sound_.tune;
    } else {
        zone.rootKey = opcodes_.key("pitch_keycenter").value_or(60) + control_.noteOffset;
    }
    zone.tune += std::clamp(opcodes_.number("tune", 0.0), -9600.0, 9600.0);
    zone.tune += 100.0 * std::clamp(opcodes_.integer("transpose", 0), -127, 127);
    zone.keyTracking = std::clamp(opcodes_.number("pitch_keytrack", 100.0), -1200.0, 1200.0);
    constexpr double middle = 0.5;
    zone.tune += middle * std::clamp(opcodes_.number("pitch_veltrack", 0.0), -9600.0, 9600.0);
}

// They belong to the root key: the engine's table of cents reaches two octaves.
void RegionReader::wholeSemitones() {
    ImportedZone& zone = region_.zone;
    if (zone.keyTracking != 100.0) return;
    const int semitones = static_cast<int>(std::trunc(zone.tune / 100.0));
    zone.rootKey -= semitones;
    zone.tune -= 100.0 * semitones;
}

bool RegionReader::points() {
    ImportedZone& zone = region_.zone;
    // A start by chance is the middle one.
    zone.start = opcodes_.frames("offset").value_or(0) + opcodes_.frames("offset_random").value_or(0) / 2;
    if (const auto end = opcodes_.number("end")) {
        if (*end < 0.0) {
            report_.note("region with end=-1", "left out, as asked for", zone.place);
            return false;
        }
        if (*end > 0.0) zone.end = *opcodes_.frames("end") + 1;
    }
    return true;
}

void RegionReader::loop() {
    ImportedZone& zone = region_.zone;
    const std::string mode = opcodes_.text("loop_mode", sound_.hasLoop ? "loop_continuous" : "no_loop");
    if (mode == "one_shot" || opcodes_.has("count")) zone.loop = LoopMode::OneShot;
    if (mode != "loop_continuous" && mode != "loop_sustain") return;
    if (zone.onRelease) { // it would never end
        report_.add("loop of a release sample", "played once", zone.place);
        return;
    }
    if (mode == "loop_sustain")
        report_.note("loop_sustain", "the loop goes on during the release", zone.place);
    zone.loop = LoopMode::Loop;
    const std::uint64_t last = std::min(zone.end, sound_.format.frames);
    const auto loopEnd = opcodes_.frames("loop_end");
    zone.loopStart = opcodes_.frames("loop_start").value_or(sound_.hasLoop ? sound_.loopStart : 0);
    zone.loopEnd = std::min(last, loopEnd ? *loopEnd + 1 : sound_.hasLoop ? sound_.loopEnd : last);
    const double fade =
        std::clamp(opcodes_.number("loop_crossfade", 0.0), 0.0, 60.0) * sound_.format.sampleRate;
    if (zone.loopStart < zone.loopEnd) // no longer than what lies before the loop, or the loop itself
        zone.shaping.loopFade = std::min({static_cast<std::uint64_t>(fade), zone.loopEnd - zone.loopStart,
                                          zone.loopStart - std::min(zone.start, zone.loopStart)});
}

void RegionReader::exclusive() {
    region_.group = opcodes_.integer("group", 0);
    region_.offBy = opcodes_.integer("off_by", 0);
    const std::string* polyphony = opcodes_.findAt(SfzOpcodes::Region, "polyphony");
    if (!polyphony) polyphony = opcodes_.findAt(SfzOpcodes::Group, "polyphony");
    if (!polyphony) return;
    region_.isMonophonic = SfzOpcodes::numberFrom(*polyphony) == 1.0;
    if (!region_.isMonophonic)
        report_.add("polyphony of a group", "the whole instrument's limit", region_.zone.place);
}

std::optional<SfzRegion> RegionReader::read() {
    const std::string place = region_.zone.place;
    const SfzVelocityLevel velocity = foldControllers(opcodes_, control_.controllers, place, report_);
    if (!ranges() || !points()) return std::nullopt;
    if (!readSfzConditions(opcodes_, control_, region_, report_)) return std::nullopt;
    pitch();
    if (!readSfzLevel(opcodes_, control_, sound_, velocity, region_.zone, report_)) return std::nullopt;
    readSfzShaping(opcodes_, control_, region_.zone, report_);
    wholeSemitones();
    loop();
    exclusive();
    reportSfzOpcodes(opcodes_, region_.zone.place, report_);
    return region_;
}

} // namespace

std::optional<SfzRegion> readSfzRegion(SfzOpcodes& opcodes, const SfzControl& control,
                                       const SoundFileInfo& sound, const std::string& place,
                                       ImportReport& report) {
    return RegionReader(opcodes, control, sound, place, report).read();
}

} // namespace zarno
