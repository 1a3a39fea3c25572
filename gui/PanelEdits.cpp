// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/PanelEdits.h"

#include "engine/EngineEvent.h"
#include "engine/ZInstrument.h"

namespace zarno {

PanelEdits::PanelEdits(ZInstrument& engine, const std::vector<int>& selection)
    : engine_(engine) {
    for (const int index : selection)
        if (index >= 0 && index < static_cast<int>(engine.groups().size()))
            chosen_.push_back(engine.groups()[static_cast<std::size_t>(index)].get());
}

void PanelEdits::finish(Afterwards afterwards) {
    if (afterwards == Afterwards::ApplySettings) engine_.requestApplySettings();
    if (afterwards == Afterwards::PrepareZones)
        for (ZGroup* group : chosen_)
            engine_.prepareZones(*group);
}

void PanelEdits::knobMoved(int id, double position) {
    if (id == pitchBendKnobId) {
        engine_.setPitchBend(static_cast<float>(bendAt(position)));
    } else if (isControllerKnob(id)) {
        engine_.postEvent(midi::controller, 0, controllerNumber(id), controllerValueAt(position),
                          immediateOffset);
    } else if (const KnobBinding* knob = findKnob(id)) {
        if (knob->isOfGroup())
            for (ZGroup* group : chosen_)
                storeKnob(*knob, group->record, position);
        else
            storeKnob(*knob, engine_.settings(), position);
        finish(knob->afterwards);
    }
}

void PanelEdits::comboChosen(int id, int item) {
    const ComboBinding* combo = findCombo(id);
    if (combo == nullptr) return;
    if (const auto* ofGroup = std::get_if<RelaxedInt GroupRecord::*>(&combo->field)) {
        for (ZGroup* group : chosen_)
            group->record.*(*ofGroup) = item;
    } else {
        engine_.settings().*std::get<RelaxedInt InstrumentSettings::*>(combo->field) = item;
    }
    finish(combo->afterwards);
}

void PanelEdits::buttonClicked(const ButtonBinding& button, bool toggled) {
    switch (button.action) {
    case ButtonAction::SetPlayMode:
        engine_.settings().playMode = static_cast<std::int32_t>(button.playMode);
        break;
    case ButtonAction::ResetSettings:
        engine_.resetSettings();
        engine_.requestApplySettings();
        break;
    case ButtonAction::SetExcluded:
        storeFlag(&GroupRecord::excluded, toggled);
        break;
    case ButtonAction::SetReleaseTrigger:
        storeFlag(&GroupRecord::releaseTrigger, toggled);
        break;
    case ButtonAction::StopVoices:
        engine_.requestStop();
        break;
    default:
        break;
    }
}

void PanelEdits::storeFlag(RelaxedInt GroupRecord::*flag, bool value) {
    for (ZGroup* group : chosen_)
        group->record.*flag = value ? 1 : 0;
    finish(Afterwards::PrepareZones);
}

std::optional<double> PanelEdits::knobValue(int id) const {
    if (id == pitchBendKnobId) return engine_.pitchBend();
    if (isControllerKnob(id)) return engine_.controllerValue(controllerNumber(id));
    const KnobBinding* knob = findKnob(id);
    if (knob == nullptr || (knob->isOfGroup() && chosen_.empty())) return {};
    return knob->isOfGroup() ? knobValueIn(*knob, chosen_.front()->record)
                             : knobValueIn(*knob, engine_.settings());
}

std::optional<int> PanelEdits::comboItem(int id) const {
    const ComboBinding* combo = findCombo(id);
    if (combo == nullptr) return {};
    if (const auto* ofGroup = std::get_if<RelaxedInt GroupRecord::*>(&combo->field))
        return chosen_.empty() ? std::nullopt : std::optional<int>(chosen_.front()->record.*(*ofGroup));
    return engine_.settings().*std::get<RelaxedInt InstrumentSettings::*>(combo->field);
}

std::optional<bool> PanelEdits::buttonState(int id) const {
    const ButtonBinding* button = findButton(id);
    if (button == nullptr) return {};
    if (button->action == ButtonAction::SetPlayMode)
        return engine_.settings().playMode == static_cast<std::int32_t>(button->playMode);
    if (chosen_.empty()) return {};
    const GroupRecord& group = chosen_.front()->record;
    if (button->action == ButtonAction::SetExcluded) return group.excluded != 0;
    if (button->action == ButtonAction::SetReleaseTrigger) return group.releaseTrigger != 0;
    return {};
}

} // namespace zarno
