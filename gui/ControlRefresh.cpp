// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/ControlRefresh.h"

#include "gui/PanelEdits.h"

namespace zarno {

bool ControlRefresh::isNew(const juce::Component* control, double value) {
    const auto [place, added] = seen_.try_emplace(control, value);
    const bool changed = added || !(place->second == value);
    place->second = value;
    return changed;
}

void ControlRefresh::refresh(const PanelControls& controls, const PanelEdits& engine) {
    for (auto* knob : controls.knobs) {
        const int id = PanelBuilder::idOf(*knob);
        const auto value = engine.knobValue(id);
        if (!value || knob->isMouseButtonDown() || !isNew(knob, *value)) continue;
        knob->setValue(knobPositionFor(id, *value, knob->getValue()), juce::dontSendNotification);
    }
    for (auto* combo : controls.combos) {
        const auto item = engine.comboItem(PanelBuilder::idOf(*combo));
        if (item && isNew(combo, *item)) combo->setSelectedItemIndex(*item, juce::dontSendNotification);
    }
    for (auto* button : controls.buttons) {
        const auto state = engine.buttonState(PanelBuilder::idOf(*button));
        if (state && button->getClickingTogglesState() && isNew(button, *state ? 1.0 : 0.0))
            button->setToggleState(*state, juce::dontSendNotification);
    }
}

} // namespace zarno
