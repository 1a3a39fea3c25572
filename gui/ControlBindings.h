// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

#include <optional>
#include <span>
#include <string>
#include <variant>

namespace zarno {

// The one table that says which engine setting a panel control drives, by the control's id, and how a knob's
// position (0..1) and the setting's value turn into each other. Plain data: no window, no thread.

// What must follow a write for the engine to take it over.
enum class Afterwards { Nothing, ApplySettings, PrepareZones };

struct KnobBinding {
    using Field = std::variant<RelaxedFloat InstrumentSettings::*, RelaxedInt InstrumentSettings::*,
                               RelaxedFloat GroupRecord::*>;
    int id;
    const char* setting; // for people
    const char* unit;    // of the value, with a leading blank; may be empty
    Field field;
    double (*value)(double position);
    double (*position)(double value); // not limited to 0..1
    Afterwards afterwards;

    bool isOfGroup() const { return std::holds_alternative<RelaxedFloat GroupRecord::*>(field); }
};

struct ComboBinding {
    using Field = std::variant<RelaxedInt InstrumentSettings::*, RelaxedInt GroupRecord::*>;
    int id;
    const char* setting;
    std::span<const char* const> items; // in order of the values 0, 1, ...
    Field field;
    Afterwards afterwards;

    bool isOfGroup() const { return std::holds_alternative<RelaxedInt GroupRecord::*>(field); }
};

enum class ButtonAction {
    SetPlayMode,
    PreviousInstrument,
    NextInstrument,
    ResetSettings,
    NextGroup,
    InstrumentMenu,
    StopVoices,
    SetExcluded,
    SetReleaseTrigger
};

struct ButtonBinding {
    int id;
    const char* setting;
    ButtonAction action;
    PlayMode playMode = PlayMode::Poly; // of SetPlayMode
};

// Null for ids that drive nothing.
const KnobBinding* findKnob(int id);
const ComboBinding* findCombo(int id);
const ButtonBinding* findButton(int id);

inline constexpr int pitchBendKnobId = 9;     // -1..+1 of the bend range; rests in the middle
inline constexpr int firstControllerId = 200; // knobs from here on send controller id - 200 on channel 0

inline bool isControllerKnob(int id) {
    return id >= firstControllerId;
}
// "Kept to one byte": ids beyond 455 wrap round, on purpose.
inline int controllerNumber(int id) {
    return (id - firstControllerId) & 0xFF;
}

// Field access by binding. A group binding needs the group's record, the others the instrument's settings.
void storeKnob(const KnobBinding& knob, InstrumentSettings& settings, double position);
void storeKnob(const KnobBinding& knob, GroupRecord& group, double position);
double knobValueIn(const KnobBinding& knob, const InstrumentSettings& settings);
double knobValueIn(const KnobBinding& knob, const GroupRecord& group);

// -1..+1, and 0..127, of the two kinds of knobs that have no field.
inline double bendAt(double position) {
    return (position - 0.5) * 2.0;
}
inline int controllerValueAt(double position) {
    return static_cast<int>(position * 127.0);
}

// Where a knob that stands at `current` belongs when what it drives is `value`, within 0..1. A knob whose
// position means just that value already (several do where the value is a whole number) stays where it is, as
// do knobs that drive nothing.
double knobPositionFor(int id, double value, double current);

// Where a knob stands while its setting has its default, or while nothing is there for it to drive.
double defaultKnobPosition(int id);

// "-6.00 dB": what a knob at a position means, for people. Settings without a unit are shown in percent.
std::string knobText(int id, double position);
// Where the knob with this id belongs for a typed value, with or without its unit; empty when it is no number.
std::optional<double> positionFromText(int id, const std::string& text);
// "Attack of the chosen groups": what a knob drives, for people.
std::string knobPurpose(int id);

} // namespace zarno
