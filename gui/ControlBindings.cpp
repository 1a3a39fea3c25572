// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/ControlBindings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace zarno {
namespace {

using Settings = InstrumentSettings;

// A whole number that a position is cut to (toward zero) comes back as a position just inside its range.
double wholeNumberPosition(double value, double range) {
    return 1.0 + (value < 0.0 ? (value - 1e-9) / range : value / range);
}

constexpr auto levelValue = [](double v) { return (v - 1.0) * 36.0 + 6.0; };
constexpr auto levelPosition = [](double x) { return (x - 6.0) / 36.0 + 1.0; };
constexpr auto sustainValue = [](double v) { return (v - 1.0) * 30.0; };
constexpr auto sustainPosition = [](double x) { return x / 30.0 + 1.0; };
constexpr auto timeValue = [](double v) { return (v - 0.5) * 2000.0; };
constexpr auto timePosition = [](double x) { return x / 2000.0 + 0.5; };
constexpr auto thousandValue = [](double v) { return std::abs(v * 1000.0); };
constexpr auto thousandPosition = [](double x) { return x / 1000.0; };
constexpr auto plainValue = [](double v) { return std::abs(v); };
constexpr auto plainPosition = [](double x) { return x; };
constexpr auto panValue = [](double v) { return (v - 0.5) * 2.0; };
constexpr auto panPosition = [](double x) { return x / 2.0 + 0.5; };
// Never exactly 0 Hz, on purpose.
constexpr auto rateValue = [](double v) { return std::abs((v + 0.001) * 20.0); };
constexpr auto ratePosition = [](double x) { return x / 20.0 - 0.001; };
constexpr auto floorValue = [](double v) { return std::trunc((v - 1.0) * 60.0); };
constexpr auto floorPosition = [](double x) { return wholeNumberPosition(x, 60.0); };
constexpr auto spanValue = [](double v) { return std::trunc((v - 1.0) * 30.0); };
constexpr auto spanPosition = [](double x) { return wholeNumberPosition(x, 30.0); };

// applySettings comes only after those whose value it spreads: after the others it would undo controller 11.
const KnobBinding knobs[] = {
    {1, "Glide time", " ms", &Settings::glideTime, thousandValue, thousandPosition, Afterwards::Nothing},
    {2, "Volume", " dB", &Settings::volume, levelValue, levelPosition, Afterwards::ApplySettings},
    {3, "Pan", "", &Settings::pan, panValue, panPosition, Afterwards::ApplySettings},
    {4, "LFO rate", " Hz", &Settings::lfoRate, rateValue, ratePosition, Afterwards::ApplySettings},
    {5, "LFO depth", "", &Settings::lfoDepth, plainValue, plainPosition, Afterwards::Nothing},
    {6, "Reverb", "", &Settings::reverbSend, plainValue, plainPosition, Afterwards::Nothing},
    {7, "Velocity floor", " dB", &Settings::velocityFloor, floorValue, floorPosition, Afterwards::Nothing},
    {8, "Velocity span", " dB", &Settings::velocitySpanOffset, spanValue, spanPosition, Afterwards::Nothing},
    {100, "Group volume", " dB", &GroupRecord::volume, levelValue, levelPosition, Afterwards::PrepareZones},
    {101, "Attack", " ms", &GroupRecord::attack, timeValue, timePosition, Afterwards::PrepareZones},
    {102, "Decay", " ms", &GroupRecord::decay, timeValue, timePosition, Afterwards::PrepareZones},
    {103, "Sustain", " dB", &GroupRecord::sustain, sustainValue, sustainPosition, Afterwards::PrepareZones},
    {104, "Release", " ms", &GroupRecord::release, timeValue, timePosition, Afterwards::PrepareZones},
    {105, "Release decay time", " ms", &GroupRecord::releaseDecayTime, thousandValue, thousandPosition,
     Afterwards::PrepareZones},
};

constexpr const char* qualities[] = {"Low", "Mid", "High"};
constexpr const char* curves[] = {"Normal", "Weak", "Strong"};
constexpr const char* playModes[] = {"Poly", "Mono", "Legato"};
constexpr const char* shapes[] = {"Triangle", "Sin", "Saw", "Square", "Exponent"};
constexpr const char* destinations[] = {"None", "Pitch", "Expression", "Pan"};
constexpr const char* depthSources[] = {"None", "Mod Wheel", "After Touch", "Velocity"};
constexpr const char* triggers[] = {"Always", "Channel", "Note", "Controller", "Program", "Manual"};
constexpr const char* selections[] = {"Stack", "Round Robin", "Random Robin", "Total Random"};

const ComboBinding combos[] = {
    {1, "Quality", qualities, &Settings::quality, Afterwards::Nothing},
    {2, "Velocity curve", curves, &Settings::velocityCurve, Afterwards::Nothing},
    {3, "Play mode", playModes, &Settings::playMode, Afterwards::Nothing},
    {4, "LFO shape", shapes, &Settings::lfoShape, Afterwards::ApplySettings},
    {5, "LFO destination", destinations, &Settings::lfoDestination, Afterwards::Nothing},
    {6, "LFO depth source", depthSources, &Settings::lfoDepthSource, Afterwards::Nothing},
    {100, "Group trigger", triggers, &GroupRecord::trigger, Afterwards::PrepareZones},
    {101, "Group selection", selections, &GroupRecord::selectionMode, Afterwards::PrepareZones},
};

constexpr ButtonBinding buttons[] = {
    {1, "Poly", ButtonAction::SetPlayMode, PlayMode::Poly},
    {2, "Mono", ButtonAction::SetPlayMode, PlayMode::Mono},
    {3, "Legato", ButtonAction::SetPlayMode, PlayMode::Legato},
    {4, "Previous instrument", ButtonAction::PreviousInstrument},
    {5, "Next instrument", ButtonAction::NextInstrument},
    {6, "Reset settings", ButtonAction::ResetSettings},
    {7, "Next group", ButtonAction::NextGroup},
    {8, "Instrument list", ButtonAction::InstrumentMenu},
    {9, "Stop all voices", ButtonAction::StopVoices},
    {100, "Group excluded", ButtonAction::SetExcluded},
    {101, "Sounds on release", ButtonAction::SetReleaseTrigger},
};

template <typename Table>
auto* find(const Table& table, int id) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [id](const auto& binding) { return binding.id == id; });
    return found == std::end(table) ? nullptr : &*found;
}

} // namespace

const KnobBinding* findKnob(int id) {
    return find(knobs, id);
}
const ComboBinding* findCombo(int id) {
    return find(combos, id);
}
const ButtonBinding* findButton(int id) {
    return find(buttons, id);
}

void storeKnob(const KnobBinding& knob, InstrumentSettings& settings, double position) {
    const double value = knob.value(position);
    if (const auto* real = std::get_if<RelaxedFloat Settings::*>(&knob.field))
        settings.** real = static_cast<float>(value);
    else if (const auto* whole = std::get_if<RelaxedInt Settings::*>(&knob.field))
        settings.** whole = static_cast<std::int32_t>(value);
}

void storeKnob(const KnobBinding& knob, GroupRecord& group, double position) {
    if (const auto* field = std::get_if<RelaxedFloat GroupRecord::*>(&knob.field))
        group.** field = static_cast<float>(knob.value(position));
}

double knobValueIn(const KnobBinding& knob, const InstrumentSettings& settings) {
    if (const auto* real = std::get_if<RelaxedFloat Settings::*>(&knob.field)) return settings.**real;
    if (const auto* whole = std::get_if<RelaxedInt Settings::*>(&knob.field)) return settings.**whole;
    return 0.0;
}

double knobValueIn(const KnobBinding& knob, const GroupRecord& group) {
    const auto* field = std::get_if<RelaxedFloat GroupRecord::*>(&knob.field);
    return field != nullptr ? static_cast<double>(group.**field) : 0.0;
}

double knobPositionFor(int id, double value, double current) {
    const KnobBinding* knob = findKnob(id);
    double position = current;
    if (id == pitchBendKnobId)
        position = bendAt(current) == value ? current : value / 2.0 + 0.5;
    else if (isControllerKnob(id))
        position = controllerValueAt(current) == value ? current : (value + 0.001) / 127.0;
    else if (knob != nullptr && static_cast<float>(knob->value(current)) != static_cast<float>(value))
        position = knob->position(value);
    return std::isfinite(position) ? std::clamp(position, 0.0, 1.0) : current;
}

double defaultKnobPosition(int id) {
    if (id == pitchBendKnobId) return 0.5;
    const KnobBinding* knob = findKnob(id);
    if (knob == nullptr) return 0.0;
    const double value =
        knob->isOfGroup() ? knobValueIn(*knob, GroupRecord{}) : knobValueIn(*knob, InstrumentSettings{});
    return knobPositionFor(id, value, 0.0);
}

namespace {

bool isInPercent(const KnobBinding* knob, int id) {
    return id == pitchBendKnobId || (knob != nullptr && *knob->unit == '\0');
}

std::string numberText(double value) {
    if (std::abs(value) < 0.005) value = 0.0; // no "-0.00"
    const int decimals = std::abs(value) < 10.0 ? 2 : std::abs(value) < 100.0 ? 1 : 0;
    char text[400]; // the longest number there is; printf would write it as the host's locale says
    const auto end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, decimals).ptr;
    return {text, end};
}

} // namespace

std::string knobText(int id, double position) {
    const KnobBinding* knob = findKnob(id);
    if (isControllerKnob(id)) return std::to_string(controllerValueAt(position));
    if (id == pitchBendKnobId) return numberText(bendAt(position) * 100.0) + " %";
    if (knob == nullptr) return numberText(position * 100.0) + " %";
    return isInPercent(knob, id) ? numberText(knob->value(position) * 100.0) + " %"
                                 : numberText(knob->value(position)) + knob->unit;
}

std::optional<double> positionFromText(int id, const std::string& text) {
    const auto first = text.find_first_of("+-.,0123456789");
    if (first == std::string::npos) return {};
    std::string digits = text.substr(text[first] == '+' ? first + 1 : first);
    std::replace(digits.begin(), digits.end(), ',', '.');
    double value = 0.0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc()) return {};
    const KnobBinding* knob = findKnob(id);
    if (isInPercent(knob, id)) value /= 100.0;
    if (knob == nullptr && id != pitchBendKnobId && !isControllerKnob(id))
        return std::clamp(value / 100.0, 0.0, 1.0);
    return knobPositionFor(id, value, 0.0);
}

std::string knobPurpose(int id) {
    const KnobBinding* knob = findKnob(id);
    if (id == pitchBendKnobId) return "Pitch bend";
    if (isControllerKnob(id)) return "MIDI controller " + std::to_string(controllerNumber(id));
    if (knob == nullptr) return "Drives nothing";
    return std::string(knob->setting) + (knob->isOfGroup() ? " of the chosen groups" : " of the instrument");
}

} // namespace zarno
