// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzRegion.h"

#include "tools/import/EnvelopeTimes.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr double silentDb = -100.0;
constexpr double longestTime = 100000.0; // ms
constexpr double envelopeFall = 70.0;    // dB: what decay and release fall by in the time they say
constexpr int highestKey = 127;

double decibels(double gain) {
    return gain > 0.0 ? std::max(silentDb, 20.0 * std::log10(gain)) : silentDb;
}

class RegionReader {
  public:
    RegionReader(const SfzOpcodes& opcodes, const SfzControl& control, const SoundFileInfo& sound,
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
    void crossfades(const char* what, const std::string& unit, ImportedRange& range);
    void pitch();
    void level();
    void envelope();
    bool points();
    void loop();
    void exclusive();
    double milliseconds(const std::string& name, double otherwise) const {
        return std::clamp(opcodes_.number(name, otherwise) * 1000.0, 0.0, longestTime);
    }

    const SfzOpcodes& opcodes_;
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
    crossfades("crossfade of velocities", "vel", zone.velocities);
    crossfades("crossfade of keys", "key", zone.keys);
    zone.keys = {std::max(zone.keys.low, 0), std::min(zone.keys.high, highestKey)};
    zone.velocities = {std::max(zone.velocities.low, 0), std::min(zone.velocities.high, 127)};
    return true;
}

// Both sides of a crossfade name the same limits, so that both find the same middle.
void RegionReader::crossfades(const char* what, const std::string& unit, ImportedRange& range) {
    const int offset = unit == "key" ? control_.noteOffset : 0;
    const auto middle = [&](const std::string& fade) -> std::optional<int> {
        const auto low = opcodes_.key(fade + "_lo" + unit), high = opcodes_.key(fade + "_hi" + unit);
        if (!low || !high || *low >= *high) return std::nullopt;
        report_.add(what, "split in the middle", region_.zone.place);
        return (*low + *high + 1) / 2 + offset;
    };
    if (const auto in = middle("xfin")) range.low = std::max(range.low, *in);
    if (const auto out = middle("xfout")) range.high = std::min(range.high, *out - 1);
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
    // Whole semitones belong to the root key: the engine's table of cents reaches two octaves.
    if (zone.keyTracking == 100.0) {
        const int semitones = static_cast<int>(std::trunc(zone.tune / 100.0));
        zone.rootKey -= semitones;
        zone.tune -= 100.0 * semitones;
    }
}

void RegionReader::level() {
    ImportedZone& zone = region_.zone;
    for (const char* name : {"volume", "global_volume", "master_volume", "group_volume"})
        zone.volume += opcodes_.number(name, 0.0);
    for (const char* name : {"amplitude", "global_amplitude", "master_amplitude", "group_amplitude"})
        if (const auto percent = opcodes_.number(name)) zone.volume += decibels(*percent / 100.0);
    zone.volume = std::clamp(zone.volume, -144.0, 48.0);
    zone.keyVolume = std::clamp(opcodes_.number("amp_keytrack", 0.0), -96.0, 12.0);
    zone.keyVolumeCentre = opcodes_.key("amp_keycenter").value_or(60) + control_.noteOffset;
    zone.pan = std::clamp(opcodes_.number("pan", 0.0) / 100.0, -1.0, 1.0);
    zone.velocityTracking = std::clamp(opcodes_.number("amp_veltrack", 100.0), -100.0, 100.0) / 100.0;
}

void RegionReader::envelope() {
    ImportedEnvelope& envelope = region_.zone.envelope;
    envelope.attack = milliseconds("ampeg_attack", 0.0);
    envelope.sustain = decibels(std::min(opcodes_.number("ampeg_sustain", 100.0), 100.0) / 100.0);
    // Without a decay the engine would never come down to the sustain level.
    if (envelope.sustain < 0.0)
        envelope.decay = std::max(envelope::shortestDecay,
                                  envelope::decayOfFall(milliseconds("ampeg_decay", 0.0), envelopeFall));
    envelope.release = envelope::releaseOfFall(milliseconds("ampeg_release", 0.001), envelopeFall);
}

bool RegionReader::points() {
    ImportedZone& zone = region_.zone;
    zone.start = opcodes_.frames("offset").value_or(0);
    if (const auto end = opcodes_.number("end")) {
        if (*end < 0.0) {
            report_.add("region with end=-1", "left out, as asked for", zone.place);
            return false;
        }
        if (*end > 0.0) zone.end = *opcodes_.frames("end") + 1;
    }
    return true;
}

void RegionReader::loop() {
    ImportedZone& zone = region_.zone;
    const bool hasOwnPoints = opcodes_.has("loop_start") || opcodes_.has("loop_end");
    const std::string mode =
        opcodes_.text("loop_mode", sound_.hasLoop || hasOwnPoints ? "loop_continuous" : "no_loop");
    if (mode == "one_shot" || opcodes_.has("count")) zone.loop = LoopMode::OneShot;
    if (mode != "loop_continuous" && mode != "loop_sustain") return;
    if (zone.onRelease) { // it would never end
        report_.add("loop of a release sample", "played once", zone.place);
        return;
    }
    if (mode == "loop_sustain")
        report_.add("loop_sustain", "the loop goes on during the release", zone.place);
    zone.loop = LoopMode::Loop;
    const std::uint64_t last = std::min(zone.end, sound_.format.frames);
    const auto loopEnd = opcodes_.frames("loop_end");
    zone.loopStart = opcodes_.frames("loop_start").value_or(sound_.hasLoop ? sound_.loopStart : 0);
    zone.loopEnd = std::min(last, loopEnd ? *loopEnd + 1 : sound_.hasLoop ? sound_.loopEnd : last);
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
    if (!ranges() || !points()) return std::nullopt;
    if (!readSfzConditions(opcodes_, control_, region_, report_)) return std::nullopt;
    pitch();
    level();
    envelope();
    loop();
    exclusive();
    reportSfzOpcodes(opcodes_, region_.zone.place, report_);
    return region_;
}

} // namespace

std::optional<SfzRegion> readSfzRegion(const SfzOpcodes& opcodes, const SfzControl& control,
                                       const SoundFileInfo& sound, const std::string& place,
                                       ImportReport& report) {
    return RegionReader(opcodes, control, sound, place, report).read();
}

} // namespace zarno
