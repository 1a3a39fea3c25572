// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"
#include "tools/import/FrameReader.h"
#include "tools/import/Shaping.h"

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// An instrument of another format as plain values: what a reader makes, and importInstrument() turns into an
// instrument file. Readers resolve everything that is theirs (inheritance, defaults, units); what nothing
// here can say they give to the ImportReport.
namespace zarno {

/// Keys or velocities, both ends included.
struct ImportedRange {
    int low = 0, high = 127;

    bool isEmpty() const { return low > high; }
    bool overlaps(const ImportedRange& other) const { return low <= other.high && other.low <= high; }
    auto operator<=>(const ImportedRange&) const = default;
};

struct ShapedPart;

/// A recording that zones play.
struct ImportedSample {
    std::string name; ///< for people and for the file made of it; need not be unique
    SoundFormat format;
    std::function<std::unique_ptr<FrameReader>()> open; ///< throws MakerError
    /// Says which recording it is among those of a library; empty: no other instrument has it.
    std::string identity;
    std::shared_ptr<const ShapedPart> shape; ///< of a shaped copy of that recording
};

/// The amplitude envelope in the engine's own terms: times in ms, the sustain level in dB. EnvelopeTimes.h
/// makes them of other formats' times.
struct ImportedEnvelope {
    double attack = 0.0;
    double decay = 0.0; ///< 0 keeps the full level, whatever the sustain level
    double sustain = 0.0;
    double release = 5.0;
};

/// The level of a zone at each velocity, or at each key, in dB. Below `silentGain` it is silence.
using ImportedGains = std::array<float, 128>;
inline constexpr float silentGain = -100.0f;

/// When a zone is there to be played.
struct ImportedCondition {
    GroupTrigger kind = GroupTrigger::Always;
    int number = 0;          ///< channel 0..15, keyswitch note, controller or program
    int low = 0, high = 127; ///< values of the controller

    auto operator<=>(const ImportedCondition&) const = default;
};

/// Zones of which one is played at a time. Those of equal kind, count, keys and velocities belong together.
struct ImportedAlternation {
    enum class Kind { None, RoundRobin, Random };

    Kind kind = Kind::None;
    int position = 0; ///< 0..count - 1
    int count = 1;
    /// Of Random: the share of chances at which it is played, 0..1.
    double low = 0.0, high = 1.0;

    /// Two that never play for the same note.
    bool excludes(const ImportedAlternation& other) const {
        if (kind == Kind::None || kind != other.kind) return false;
        return kind == Kind::Random ? high <= other.low || other.high <= low
                                    : count == other.count && position != other.position;
    }
    auto operator<=>(const ImportedAlternation&) const = default;
};

struct ImportedZone {
    std::size_t sample = 0; ///< index into ImportedInstrument::samples
    std::string place;      ///< where the source says it ("piano.sfz:12"), for remarks
    std::string group;      ///< zones of one name share a group where the engine allows; may be empty

    ImportedRange keys, velocities;
    ImportedCondition condition;
    ImportedAlternation alternation;
    bool onRelease = false;    ///< sounds on note-off
    double releaseDecay = 0.0; ///< ms until a release zone has faded with the time the key was held; 0 never
    int choke = 0;             ///< zones of one number, 0 excepted, cut each other

    int rootKey = 60;
    double tune = 0.0;          ///< cents
    double keyTracking = 100.0; ///< cents a key
    double volume = 0.0;        ///< dB
    double keyVolume = 0.0;     ///< dB added a key above keyVolumeCentre
    int keyVolumeCentre = 60;
    double pan = 0.0; ///< -1..+1
    /// 1: 40 dB for a factor of ten in velocity; 0: full level at any velocity.
    double velocityTracking = 1.0;
    std::shared_ptr<const ImportedGains> velocityGains; ///< instead, where there are any
    std::shared_ptr<const ImportedGains> keyGains;      ///< added to the volume; null: none
    ImportedEnvelope envelope;
    ImportedShaping shaping; ///< what the engine has not, done to copies of the sample

    // Frames of the sample. Points beyond its end are moved inside.
    std::uint64_t start = 0;
    std::uint64_t end = UINT64_MAX; ///< exclusive
    LoopMode loop = LoopMode::None;
    std::uint64_t loopStart = 0;
    std::uint64_t loopEnd = 0; ///< exclusive
};

/// dB by which instruments are turned down whose samples reach full level, so that chords do not clip.
inline constexpr double chordHeadroom = -10.0;

struct ImportedInstrument {
    std::string name;
    std::string text; ///< a remark of the maker's; may be empty
    std::vector<ImportedSample> samples;
    std::vector<ImportedZone> zones;
    std::optional<int> polyphony;
    std::optional<double> vibratoRate; ///< Hz of a vibrato on the mod wheel, when there is one
    double volume = 0.0;               ///< dB of the whole instrument
    std::optional<int> firstKeyswitch; ///< the note whose zones are there before any keyswitch was played
};

} // namespace zarno
