// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/KnobActions.h"

#include "engine/ZInstrument.h"
#include "gui/GroupSelection.h"

namespace zarno {
namespace {

enum MenuItem { typeItem = 1, resetItem };

juce::String shownValue(juce::Slider& knob) {
    return knob.getTitle() + "  " + knob.getTextFromValue(knob.getValue());
}

} // namespace

KnobActions::KnobActions(EditorLink& link, EngineAccess& access, const GroupSelection& selection,
                         Surroundings surroundings)
    : link_(link)
    , access_(access)
    , selection_(selection)
    , surroundings_(std::move(surroundings)) {
    surroundings_.parent.addChildComponent(bubble_);
}

juce::Rectangle<int> KnobActions::placeOf(const juce::Component& knob) const {
    return surroundings_.parent.getLocalArea(&knob, knob.getLocalBounds());
}

void KnobActions::moved(juce::Slider& knob) {
    access_.edit([id = PanelBuilder::idOf(knob), position = knob.getValue()](PanelEdits& edits) {
        edits.knobMoved(id, position);
    });
    bubble_.show(shownValue(knob), placeOf(knob), surroundings_.occupied());
    if (&knob != dragged_) dragEnded(knob); // by keyboard or wheel: a change of its own
}

void KnobActions::dragEnded(juce::Slider& knob) {
    dragged_ = nullptr;
    const bool springsBack = PanelBuilder::idOf(knob) == pitchBendKnobId;
    if (springsBack && knob.getValue() != 0.5) knob.setValue(0.5, juce::sendNotificationSync);
    if (!springsBack) link_.editEnded();
}

void KnobActions::release() {
    bubble_.hide();
    const auto* knob = std::exchange(dragged_, nullptr);
    if (knob != nullptr && PanelBuilder::idOf(*knob) == pitchBendKnobId) link_.engine().setPitchBend(0.0f);
}

// Where the knob stood when the instrument's file was loaded.
double KnobActions::filePosition(int id) {
    const KnobBinding* knob = findKnob(id);
    double position = defaultKnobPosition(id);
    if (knob == nullptr) return position;
    access_.read([&] {
        const auto& file = link_.engine().fileValues();
        const auto& chosen = selection_.indices(link_.loadGeneration());
        if (!knob->isOfGroup())
            position = knobPositionFor(id, knobValueIn(*knob, file.settings), position);
        else if (!chosen.empty() && static_cast<std::size_t>(chosen.front()) < file.groups.size())
            position = knobPositionFor(
                id, knobValueIn(*knob, file.groups[static_cast<std::size_t>(chosen.front())]), position);
    });
    return position;
}

void KnobActions::resetKnob(PanelKnob& knob) {
    knob.setValue(filePosition(PanelBuilder::idOf(knob)), juce::sendNotificationSync);
}

void KnobActions::showKnobMenu(PanelKnob& knob) {
    juce::PopupMenu menu;
    menu.addSectionHeader(shownValue(knob));
    menu.addItem(-1, knob.getTooltip(), false);
    menu.addSeparator();
    menu.addItem(typeItem, juce::CharPointer_UTF8("Type a value\xE2\x80\xA6"));
    menu.addItem(resetItem, "Reset");
    menu.showMenuAsync(juce::PopupMenu::Options().withTargetComponent(knob).withDeletionCheck(knob),
                       [this, safe = juce::Component::SafePointer(&knob)](int item) {
                           if (safe == nullptr) return;
                           if (item == typeItem) typeKnobValue(*safe);
                           if (item == resetItem) resetKnob(*safe);
                       });
}

void KnobActions::typeKnobValue(PanelKnob& knob) {
    bubble_.ask(knob.getTextFromValue(knob.getValue()), placeOf(knob), surroundings_.occupied(),
                [safe = juce::Component::SafePointer(&knob)](const juce::String& typed) {
                    if (safe == nullptr) return;
                    if (const auto position = positionFromText(PanelBuilder::idOf(*safe), typed.toStdString()))
                        safe->setValue(*position, juce::sendNotificationSync);
                    safe->grabKeyboardFocus();
                });
}

} // namespace zarno
