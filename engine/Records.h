// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/RelaxedField.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// The three fixed-size records that instrument files and host chunks store byte for byte, little-endian.
// Their layouts are file formats: offsets and sizes are checked at the end of this file. The bytes that the
// engine does not read are kept as loaded.

namespace zarno {

enum class PlayMode : std::int32_t { Poly = 0, Mono = 1, Legato = 2 };
enum class Quality : std::int32_t { Low = 0, Mid = 1, High = 2 };
enum class VelocityCurve : std::int32_t { Normal = 0, Weak = 1, Strong = 2 };
enum class LfoShape : std::int32_t { Triangle = 0, Sin = 1, Saw = 2, Square = 3, Exponent = 4 };
enum class LfoDestination : std::int32_t { None = 0, Pitch = 1, Expression = 2, Pan = 3 };
enum class LfoDepthSource : std::int32_t { None = 0, ModWheel = 1, AfterTouch = 2, Velocity = 3 };
enum class GroupTrigger : std::int32_t {
    Always = 0,
    Channel = 1,
    Note = 2,
    Controller = 3,
    Program = 4,
    Manual = 5
};
enum class SelectionMode : std::int32_t { Stack = 0, RoundRobin = 1, RandomRobin = 2, TotalRandom = 3 };
enum class LoopMode : std::int32_t { None = 0, OneShot = 1, Loop = 2 };

using RelaxedInt = RelaxedField<std::int32_t>;
using RelaxedFloat = RelaxedField<float>;

// Instrument record. A field and the "stored" field behind it are a pair: the stored one is the author's,
// the other the one in force; loading copies stored over live.
struct InstrumentSettings {
    RelaxedInt streamBufferFrames = 44100; // frames of a zone's preload and of each stream buffer, 1..4194304
    RelaxedInt streamBufferFramesStored = 44100;
    RelaxedInt sixteenBit = 1; // nonzero: sample memory holds 16-bit integers, else 32-bit floats
    RelaxedInt sixteenBitStored = 1;
    RelaxedInt streaming = 1; // nonzero: zones keep a preload and stream the rest from disk
    RelaxedInt streamingStored = 1;
    RelaxedInt polyphony = 32; // voices in the pool, 1..1024
    RelaxedInt polyphonyStored = 32;
    RelaxedInt quality = 2;            // Quality
    RelaxedInt velocityCurve = 0;      // VelocityCurve
    RelaxedInt playMode = 0;           // PlayMode
    RelaxedFloat glideTime = 0.0f;     // ms, 0 = no glide
    RelaxedFloat volume = 0.0f;        // dB
    RelaxedFloat pan = 0.0f;           // -1 (left) .. +1 (right)
    RelaxedInt lfoShape = 0;           // LfoShape
    RelaxedInt lfoDestination = 1;     // LfoDestination
    RelaxedInt lfoDepthSource = 1;     // LfoDepthSource
    RelaxedFloat lfoRate = 3.0f;       // Hz
    RelaxedFloat lfoDepth = 0.0f;      // plain factor; for pitch: semitones
    RelaxedFloat reverbSend = 0.0f;    // 0..1
    RelaxedInt velocityFloor = -48;    // dB at the bottom of the velocity curve
    RelaxedInt velocitySpanOffset = 0; // dB, see velocityGain in Tables.h
    std::uint8_t unread[504] = {};
};

// Group record.
struct GroupRecord {
    RelaxedInt trigger = 0; // GroupTrigger
    RelaxedInt channel = 0; // 0..15, for Channel
    RelaxedInt keyswitchNote = 0;
    RelaxedInt controllerNumber = 0;
    RelaxedInt controllerLow = 0;
    RelaxedInt controllerHigh = 127;
    RelaxedInt program = 0;
    RelaxedInt selectionMode = 0; // SelectionMode
    RelaxedFloat attack = 0.0f;   // ms, added to each zone's
    RelaxedFloat decay = 0.0f;    // ms, added to each zone's
    RelaxedFloat sustain = 0.0f;  // dB, added to each zone's
    RelaxedFloat release = 0.0f;  // ms, added to each zone's
    RelaxedInt lowKey = 0;
    RelaxedInt highKey = 127;
    RelaxedInt highVelocity = 127;
    RelaxedInt lowVelocity = 0;
    RelaxedInt releaseTrigger = 0;        // nonzero: sounds on note-off
    RelaxedFloat releaseDecayTime = 0.0f; // ms
    RelaxedFloat volume = 0.0f;           // dB, added to each zone's; -30 or below silences
    RelaxedInt excluded = 0;              // nonzero: never active
    std::uint8_t unread[500] = {};
};

// Zone record. Frames are positions in the zone's sound file.
struct ZoneRecord {
    std::int32_t rootKey = 0;
    std::int32_t lowKey = 0;
    std::int32_t highKey = 0;
    std::int32_t highVelocity = 0;
    std::int32_t lowVelocity = 0;
    std::int32_t loopMode = 0; // LoopMode; everything above 1 loops
    std::uint64_t startFrame = 0;
    std::uint64_t endFrame = 0; // the voice ends when its position reaches this
    std::uint64_t loopStart = 0;
    std::uint64_t loopEnd = 0;
    float volume = 0.0f;             // dB
    float pan = 0.0f;                // -1..+1
    float attack = 0.0f;             // ms
    float decay = 0.0f;              // ms
    float sustain = 0.0f;            // dB
    float release = 0.0f;            // ms (a zone made from a sound file starts with 100)
    float fineTune = 0.0f;           // cents
    std::int32_t fixedPitch = 0;     // nonzero: no key tracking
    std::int32_t ignoreVelocity = 0; // nonzero: velocity gain 1
    std::int32_t exclusiveId = 0;    // 0 none, else voices of one id cut each other
    std::uint8_t unread[512] = {};
};

inline bool loops(const ZoneRecord& zone) {
    return zone.loopMode > 1;
}
inline bool isOneShot(const ZoneRecord& zone) {
    return zone.loopMode == 1;
}

#define ZARNO_AT(record, field, offset) static_assert(offsetof(record, field) == (offset))
static_assert(sizeof(InstrumentSettings) == 592 && std::is_trivially_copyable_v<InstrumentSettings>);
ZARNO_AT(InstrumentSettings, streamBufferFrames, 0);
ZARNO_AT(InstrumentSettings, streamBufferFramesStored, 4);
ZARNO_AT(InstrumentSettings, sixteenBit, 8);
ZARNO_AT(InstrumentSettings, sixteenBitStored, 12);
ZARNO_AT(InstrumentSettings, streaming, 16);
ZARNO_AT(InstrumentSettings, streamingStored, 20);
ZARNO_AT(InstrumentSettings, polyphony, 24);
ZARNO_AT(InstrumentSettings, polyphonyStored, 28);
ZARNO_AT(InstrumentSettings, quality, 32);
ZARNO_AT(InstrumentSettings, velocityCurve, 36);
ZARNO_AT(InstrumentSettings, playMode, 40);
ZARNO_AT(InstrumentSettings, glideTime, 44);
ZARNO_AT(InstrumentSettings, volume, 48);
ZARNO_AT(InstrumentSettings, pan, 52);
ZARNO_AT(InstrumentSettings, lfoShape, 56);
ZARNO_AT(InstrumentSettings, lfoDestination, 60);
ZARNO_AT(InstrumentSettings, lfoDepthSource, 64);
ZARNO_AT(InstrumentSettings, lfoRate, 68);
ZARNO_AT(InstrumentSettings, lfoDepth, 72);
ZARNO_AT(InstrumentSettings, reverbSend, 76);
ZARNO_AT(InstrumentSettings, velocityFloor, 80);
ZARNO_AT(InstrumentSettings, velocitySpanOffset, 84);
ZARNO_AT(InstrumentSettings, unread, 88);

static_assert(sizeof(GroupRecord) == 580 && std::is_trivially_copyable_v<GroupRecord>);
ZARNO_AT(GroupRecord, trigger, 0);
ZARNO_AT(GroupRecord, channel, 4);
ZARNO_AT(GroupRecord, keyswitchNote, 8);
ZARNO_AT(GroupRecord, controllerNumber, 12);
ZARNO_AT(GroupRecord, controllerLow, 16);
ZARNO_AT(GroupRecord, controllerHigh, 20);
ZARNO_AT(GroupRecord, program, 24);
ZARNO_AT(GroupRecord, selectionMode, 28);
ZARNO_AT(GroupRecord, attack, 32);
ZARNO_AT(GroupRecord, decay, 36);
ZARNO_AT(GroupRecord, sustain, 40);
ZARNO_AT(GroupRecord, release, 44);
ZARNO_AT(GroupRecord, lowKey, 48);
ZARNO_AT(GroupRecord, highKey, 52);
ZARNO_AT(GroupRecord, highVelocity, 56);
ZARNO_AT(GroupRecord, lowVelocity, 60);
ZARNO_AT(GroupRecord, releaseTrigger, 64);
ZARNO_AT(GroupRecord, releaseDecayTime, 68);
ZARNO_AT(GroupRecord, volume, 72);
ZARNO_AT(GroupRecord, excluded, 76);
ZARNO_AT(GroupRecord, unread, 80);

static_assert(sizeof(ZoneRecord) == 608 && std::is_trivially_copyable_v<ZoneRecord>);
ZARNO_AT(ZoneRecord, rootKey, 0);
ZARNO_AT(ZoneRecord, lowKey, 4);
ZARNO_AT(ZoneRecord, highKey, 8);
ZARNO_AT(ZoneRecord, highVelocity, 12);
ZARNO_AT(ZoneRecord, lowVelocity, 16);
ZARNO_AT(ZoneRecord, loopMode, 20);
ZARNO_AT(ZoneRecord, startFrame, 24);
ZARNO_AT(ZoneRecord, endFrame, 32);
ZARNO_AT(ZoneRecord, loopStart, 40);
ZARNO_AT(ZoneRecord, loopEnd, 48);
ZARNO_AT(ZoneRecord, volume, 56);
ZARNO_AT(ZoneRecord, pan, 60);
ZARNO_AT(ZoneRecord, attack, 64);
ZARNO_AT(ZoneRecord, decay, 68);
ZARNO_AT(ZoneRecord, sustain, 72);
ZARNO_AT(ZoneRecord, release, 76);
ZARNO_AT(ZoneRecord, fineTune, 80);
ZARNO_AT(ZoneRecord, fixedPitch, 84);
ZARNO_AT(ZoneRecord, ignoreVelocity, 88);
ZARNO_AT(ZoneRecord, exclusiveId, 92);
ZARNO_AT(ZoneRecord, unread, 96);
#undef ZARNO_AT

// Copies of records that may be in use: see copyRecord.
inline void copySettings(InstrumentSettings& to, const InstrumentSettings& from) {
    copyRecord(to, from, offsetof(InstrumentSettings, unread));
}
inline void copyGroup(GroupRecord& to, const GroupRecord& from) {
    copyRecord(to, from, offsetof(GroupRecord, unread));
}

} // namespace zarno
