// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Fields.h"

#include "engine/Records.h"

namespace zarno {
namespace {

using Choices = std::string_view[];

constexpr Choices qualities = {"Low", "Mid", "High"};
constexpr Choices velocityCurves = {"Normal", "Weak", "Strong"};
constexpr Choices playModes = {"Poly", "Mono", "Legato"};
constexpr Choices lfoShapes = {"Triangle", "Sin", "Saw", "Square", "Exponent"};
constexpr Choices lfoDestinations = {"None", "Pitch", "Expression", "Pan"};
constexpr Choices lfoDepthSources = {"None", "Mod Wheel", "After Touch", "Velocity"};
constexpr Choices triggers = {"Always", "Channel", "Note", "Controller", "Program", "Manual"};
constexpr Choices selectionModes = {"Stack", "Round Robin", "Random Robin", "Total Random"};
constexpr Choices loopModes = {"None", "One Shot", "Loop"};

constexpr FieldRange any;
constexpr FieldRange positive{0.0};
constexpr FieldRange midi{0, 127};
constexpr FieldRange side{-1.0, 1.0};

#define ZARNO_FIELD(record, member, type, ...)                                                               \
    { #member, FieldType::type, offsetof(record, member), __VA_ARGS__ }

constexpr RecordField settingsFields[] = {
    ZARNO_FIELD(InstrumentSettings, streamBufferFrames, Int, "frames", FieldRange{1, 4194304},
                "length of a zone's preload and of each stream buffer"),
    ZARNO_FIELD(InstrumentSettings, streamBufferFramesStored, Int, "frames", FieldRange{1, 4194304},
                "the author's value, which replaces the live one on loading"),
    ZARNO_FIELD(InstrumentSettings, sixteenBit, Int, "", any,
                "not 0: samples are kept as 16-bit integers, else as 32-bit floats"),
    ZARNO_FIELD(InstrumentSettings, sixteenBitStored, Int, "", any,
                "the same, replaces the live one on loading"),
    ZARNO_FIELD(InstrumentSettings, streaming, Int, "", any,
                "not 0: zones keep a preload and stream the rest from disk, else samples are in memory"),
    ZARNO_FIELD(InstrumentSettings, streamingStored, Int, "", any,
                "the same, replaces the live one on loading"),
    ZARNO_FIELD(InstrumentSettings, polyphony, Int, "voices", FieldRange{1, 1024},
                "voices that can sound at once"),
    ZARNO_FIELD(InstrumentSettings, polyphonyStored, Int, "voices", FieldRange{1, 1024},
                "the same, replaces the live one on loading"),
    ZARNO_FIELD(InstrumentSettings, quality, Int, "", FieldRange{0, 2}, "interpolation", qualities),
    ZARNO_FIELD(InstrumentSettings, velocityCurve, Int, "", FieldRange{0, 2}, "how velocity becomes level",
                velocityCurves),
    ZARNO_FIELD(InstrumentSettings, playMode, Int, "", FieldRange{0, 2}, "several notes at once, or one",
                playModes),
    ZARNO_FIELD(InstrumentSettings, glideTime, Float, "ms", positive,
                "from one note to the next in Mono and Legato; 0: no glide"),
    ZARNO_FIELD(InstrumentSettings, volume, Float, "dB", any, "level of the instrument"),
    ZARNO_FIELD(InstrumentSettings, pan, Float, "", side, "-1 left to +1 right"),
    ZARNO_FIELD(InstrumentSettings, lfoShape, Int, "", FieldRange{0, 4}, "wave form of the LFO", lfoShapes),
    ZARNO_FIELD(InstrumentSettings, lfoDestination, Int, "", FieldRange{0, 3}, "what the LFO moves",
                lfoDestinations),
    ZARNO_FIELD(InstrumentSettings, lfoDepthSource, Int, "", FieldRange{0, 3},
                "what scales the depth of the LFO", lfoDepthSources),
    ZARNO_FIELD(InstrumentSettings, lfoRate, Float, "Hz", positive, "speed of the LFO"),
    ZARNO_FIELD(InstrumentSettings, lfoDepth, Float, "", any, "depth of the LFO, for pitch in semitones"),
    ZARNO_FIELD(InstrumentSettings, reverbSend, Float, "", FieldRange{0.0, 1.0},
                "part of the sound that goes to the reverb"),
    ZARNO_FIELD(InstrumentSettings, velocityFloor, Int, "dB", any, "level of the softest velocity"),
    ZARNO_FIELD(InstrumentSettings, velocitySpanOffset, Int, "dB", any,
                "added to the span between softest and loudest"),
};

constexpr RecordField groupFields[] = {
    ZARNO_FIELD(GroupRecord, trigger, Int, "", FieldRange{0, 5}, "what makes the group sound", triggers),
    ZARNO_FIELD(GroupRecord, channel, Int, "", FieldRange{0, 15}, "for the trigger Channel"),
    ZARNO_FIELD(GroupRecord, keyswitchNote, Int, "", midi, "for the trigger Note"),
    ZARNO_FIELD(GroupRecord, controllerNumber, Int, "", midi, "for the trigger Controller"),
    ZARNO_FIELD(GroupRecord, controllerLow, Int, "", midi, "lowest value of the controller"),
    ZARNO_FIELD(GroupRecord, controllerHigh, Int, "", midi, "highest value of the controller"),
    ZARNO_FIELD(GroupRecord, program, Int, "", midi, "for the trigger Program"),
    ZARNO_FIELD(GroupRecord, selectionMode, Int, "", FieldRange{0, 3},
                "which of the zones that match a note play", selectionModes),
    ZARNO_FIELD(GroupRecord, attack, Float, "ms", any, "added to each zone's"),
    ZARNO_FIELD(GroupRecord, decay, Float, "ms", any, "added to each zone's"),
    ZARNO_FIELD(GroupRecord, sustain, Float, "dB", any, "added to each zone's"),
    ZARNO_FIELD(GroupRecord, release, Float, "ms", any, "added to each zone's"),
    ZARNO_FIELD(GroupRecord, lowKey, Int, "", midi, "no zone plays below it"),
    ZARNO_FIELD(GroupRecord, highKey, Int, "", midi, "no zone plays above it"),
    ZARNO_FIELD(GroupRecord, highVelocity, Int, "", midi, "no zone plays above it"),
    ZARNO_FIELD(GroupRecord, lowVelocity, Int, "", midi, "no zone plays below it"),
    ZARNO_FIELD(GroupRecord, releaseTrigger, Int, "", any, "not 0: sounds when a key goes up"),
    ZARNO_FIELD(GroupRecord, releaseDecayTime, Float, "ms", positive,
                "how long a key must be held until its release sound is silent; 0: no matter"),
    ZARNO_FIELD(GroupRecord, volume, Float, "dB", any, "added to each zone's; -30 and below is silence"),
    ZARNO_FIELD(GroupRecord, excluded, Int, "", any, "not 0: never sounds"),
};

constexpr RecordField zoneFields[] = {
    ZARNO_FIELD(ZoneRecord, rootKey, Int, "", midi, "key at which the sample plays as recorded"),
    ZARNO_FIELD(ZoneRecord, lowKey, Int, "", midi, "lowest key that plays it"),
    ZARNO_FIELD(ZoneRecord, highKey, Int, "", midi, "highest key that plays it"),
    ZARNO_FIELD(ZoneRecord, highVelocity, Int, "", midi, "highest velocity that plays it"),
    ZARNO_FIELD(ZoneRecord, lowVelocity, Int, "", midi, "lowest velocity that plays it"),
    ZARNO_FIELD(ZoneRecord, loopMode, Int, "", positive,
                "One Shot ignores note-off; numbers above 2 loop, too", loopModes),
    ZARNO_FIELD(ZoneRecord, startFrame, Frame, "frames", any, "where playing starts"),
    ZARNO_FIELD(ZoneRecord, endFrame, Frame, "frames", any, "where the voice ends"),
    ZARNO_FIELD(ZoneRecord, loopStart, Frame, "frames", any, "where a loop starts"),
    ZARNO_FIELD(ZoneRecord, loopEnd, Frame, "frames", any, "where a loop goes back to its start"),
    ZARNO_FIELD(ZoneRecord, volume, Float, "dB", any, "level"),
    ZARNO_FIELD(ZoneRecord, pan, Float, "", side, "-1 left to +1 right"),
    ZARNO_FIELD(ZoneRecord, attack, Float, "ms", positive, "time to full level"),
    ZARNO_FIELD(ZoneRecord, decay, Float, "ms", positive,
                "time from there to the sustain level; 0: the full level stays"),
    ZARNO_FIELD(ZoneRecord, sustain, Float, "dB", any, "level while the key is held, after the decay"),
    ZARNO_FIELD(ZoneRecord, release, Float, "ms", positive, "fade after the key went up"),
    ZARNO_FIELD(ZoneRecord, fineTune, Float, "cents", any, "added to the pitch"),
    ZARNO_FIELD(ZoneRecord, fixedPitch, Int, "", any, "not 0: the same pitch on all keys"),
    ZARNO_FIELD(ZoneRecord, ignoreVelocity, Int, "", any, "not 0: full level at any velocity"),
    ZARNO_FIELD(ZoneRecord, exclusiveId, Int, "", any, "zones of one number cut each other; 0: none"),
};

#undef ZARNO_FIELD

template <typename Record>
RecordLayout makeLayout(std::span<const RecordField> fields) {
    static const Record defaults;
    return {fields, offsetof(Record, unread), sizeof(Record), &defaults};
}

} // namespace

const RecordLayout& layoutOf(const InstrumentSettings&) {
    static const RecordLayout layout = makeLayout<InstrumentSettings>(settingsFields);
    return layout;
}

const RecordLayout& layoutOf(const GroupRecord&) {
    static const RecordLayout layout = makeLayout<GroupRecord>(groupFields);
    return layout;
}

const RecordLayout& layoutOf(const ZoneRecord&) {
    static const RecordLayout layout = makeLayout<ZoneRecord>(zoneFields);
    return layout;
}

} // namespace zarno
