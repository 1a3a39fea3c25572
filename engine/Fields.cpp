// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/RecordFields.h"

#include "engine/Records.h"

namespace zarno {
namespace {

using Texts = std::string_view[];

constexpr Texts qualities = {"Low", "Mid", "High"};
constexpr Texts velocityCurves = {"Normal", "Weak", "Strong"};
constexpr Texts playModes = {"Poly", "Mono", "Legato"};
constexpr Texts lfoShapes = {"Triangle", "Sin", "Saw", "Square", "Exponent"};
constexpr Texts lfoDestinations = {"None", "Pitch", "Expression", "Pan"};
constexpr Texts lfoDepthSources = {"None", "Mod Wheel", "After Touch", "Velocity"};
constexpr Texts triggers = {"Always", "Channel", "Note", "Controller", "Program", "Manual"};
constexpr Texts selectionModes = {"Stack", "Round Robin", "Random Robin", "Total Random"};

#define ZARNO_FIELD(record, member, type, ...)                                                               \
    { #member, FieldType::type, offsetof(record, member), __VA_ARGS__ }

constexpr RecordField settingsFields[] = {
    ZARNO_FIELD(InstrumentSettings, streamBufferFrames, Int, "frames"),
    ZARNO_FIELD(InstrumentSettings, streamBufferFramesStored, Int, "frames"),
    ZARNO_FIELD(InstrumentSettings, sixteenBit, Int, ""),
    ZARNO_FIELD(InstrumentSettings, sixteenBitStored, Int, ""),
    ZARNO_FIELD(InstrumentSettings, streaming, Int, ""),
    ZARNO_FIELD(InstrumentSettings, streamingStored, Int, ""),
    ZARNO_FIELD(InstrumentSettings, polyphony, Int, "voices"),
    ZARNO_FIELD(InstrumentSettings, polyphonyStored, Int, "voices"),
    ZARNO_FIELD(InstrumentSettings, quality, Int, "", qualities),
    ZARNO_FIELD(InstrumentSettings, velocityCurve, Int, "", velocityCurves),
    ZARNO_FIELD(InstrumentSettings, playMode, Int, "", playModes),
    ZARNO_FIELD(InstrumentSettings, glideTime, Float, "ms"),
    ZARNO_FIELD(InstrumentSettings, volume, Float, "dB"),
    ZARNO_FIELD(InstrumentSettings, pan, Float, ""),
    ZARNO_FIELD(InstrumentSettings, lfoShape, Int, "", lfoShapes),
    ZARNO_FIELD(InstrumentSettings, lfoDestination, Int, "", lfoDestinations),
    ZARNO_FIELD(InstrumentSettings, lfoDepthSource, Int, "", lfoDepthSources),
    ZARNO_FIELD(InstrumentSettings, lfoRate, Float, "Hz"),
    ZARNO_FIELD(InstrumentSettings, lfoDepth, Float, ""),
    ZARNO_FIELD(InstrumentSettings, reverbSend, Float, ""),
    ZARNO_FIELD(InstrumentSettings, velocityFloor, Int, "dB"),
    ZARNO_FIELD(InstrumentSettings, velocitySpanOffset, Int, "dB"),
};

constexpr RecordField groupFields[] = {
    ZARNO_FIELD(GroupRecord, trigger, Int, "", triggers),
    ZARNO_FIELD(GroupRecord, channel, Int, ""),
    ZARNO_FIELD(GroupRecord, keyswitchNote, Int, ""),
    ZARNO_FIELD(GroupRecord, controllerNumber, Int, ""),
    ZARNO_FIELD(GroupRecord, controllerLow, Int, ""),
    ZARNO_FIELD(GroupRecord, controllerHigh, Int, ""),
    ZARNO_FIELD(GroupRecord, program, Int, ""),
    ZARNO_FIELD(GroupRecord, selectionMode, Int, "", selectionModes),
    ZARNO_FIELD(GroupRecord, attack, Float, "ms"),
    ZARNO_FIELD(GroupRecord, decay, Float, "ms"),
    ZARNO_FIELD(GroupRecord, sustain, Float, "dB"),
    ZARNO_FIELD(GroupRecord, release, Float, "ms"),
    ZARNO_FIELD(GroupRecord, lowKey, Int, ""),
    ZARNO_FIELD(GroupRecord, highKey, Int, ""),
    ZARNO_FIELD(GroupRecord, highVelocity, Int, ""),
    ZARNO_FIELD(GroupRecord, lowVelocity, Int, ""),
    ZARNO_FIELD(GroupRecord, releaseTrigger, Int, ""),
    ZARNO_FIELD(GroupRecord, releaseDecayTime, Float, "ms"),
    ZARNO_FIELD(GroupRecord, volume, Float, "dB"),
    ZARNO_FIELD(GroupRecord, excluded, Int, ""),
};

constexpr RecordField zoneFields[] = {
    ZARNO_FIELD(ZoneRecord, rootKey, Int, ""),
    ZARNO_FIELD(ZoneRecord, lowKey, Int, ""),
    ZARNO_FIELD(ZoneRecord, highKey, Int, ""),
    ZARNO_FIELD(ZoneRecord, highVelocity, Int, ""),
    ZARNO_FIELD(ZoneRecord, lowVelocity, Int, ""),
    ZARNO_FIELD(ZoneRecord, loopMode, Int, ""),
    ZARNO_FIELD(ZoneRecord, startFrame, Frame, "frames"),
    ZARNO_FIELD(ZoneRecord, endFrame, Frame, "frames"),
    ZARNO_FIELD(ZoneRecord, loopStart, Frame, "frames"),
    ZARNO_FIELD(ZoneRecord, loopEnd, Frame, "frames"),
    ZARNO_FIELD(ZoneRecord, volume, Float, "dB"),
    ZARNO_FIELD(ZoneRecord, pan, Float, ""),
    ZARNO_FIELD(ZoneRecord, attack, Float, "ms"),
    ZARNO_FIELD(ZoneRecord, decay, Float, "ms"),
    ZARNO_FIELD(ZoneRecord, sustain, Float, "dB"),
    ZARNO_FIELD(ZoneRecord, release, Float, "ms"),
    ZARNO_FIELD(ZoneRecord, fineTune, Float, "cents"),
    ZARNO_FIELD(ZoneRecord, fixedPitch, Int, ""),
    ZARNO_FIELD(ZoneRecord, ignoreVelocity, Int, ""),
    ZARNO_FIELD(ZoneRecord, exclusiveId, Int, ""),
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
