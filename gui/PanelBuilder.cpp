// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/PanelBuilder.h"

#include "gui/CKnob.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/ControlBindings.h"
#include "gui/PanelArtwork.h"

#include <algorithm>

namespace zarno {
namespace {

const juce::Identifier imageProperty("1"), idProperty("2"), extraProperty("9");

juce::String knobName(int id) {
    if (id == pitchBendKnobId) return "Pitch bend";
    if (isControllerKnob(id)) return "Controller " + juce::String(controllerNumber(id));
    const KnobBinding* knob = findKnob(id);
    return knob != nullptr ? knob->setting : "Knob";
}

bool goesBothWays(int id) {
    const KnobBinding* knob = findKnob(id);
    return id == pitchBendKnobId || (knob != nullptr && knob->value(0.0) < 0.0 && knob->value(0.5) == 0.0);
}

void setUpKnob(PanelKnob& knob, const ControlDescription& description, KnobOwner* owner) {
    const int id = description.id;
    knob.setTitle(description.text.isNotEmpty() ? description.text : knobName(id));
    knob.setTooltip(knobPurpose(id));
    knob.setOwner(owner);
    if (goesBothWays(id)) knob.getProperties().set("fromMiddle", true);
    knob.setValue(defaultKnobPosition(id), juce::dontSendNotification);
    knob.textFromValueFunction = [id](double position) { return juce::String(knobText(id, position)); };
    knob.updateText();
}

// The order of Tab: by rows, which are as high as half a control, and from left to right.
void orderByRows(const std::vector<std::unique_ptr<juce::Component>>& controls) {
    std::vector<juce::Component*> sorted;
    for (const auto& control : controls)
        sorted.push_back(control.get());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](auto* a, auto* b) { return a->getBounds().getCentreY() < b->getBounds().getCentreY(); });
    for (auto row = sorted.begin(); row != sorted.end();) {
        const auto* first = *row;
        const auto end = std::find_if(row, sorted.end(), [first](auto* control) {
            return control->getBounds().getCentreY() > first->getBounds().getCentreY() + first->getHeight() / 2;
        });
        std::stable_sort(row, end, [](auto* a, auto* b) { return a->getX() < b->getX(); });
        row = end;
    }
    int place = 0;
    for (auto* control : sorted)
        control->setExplicitFocusOrder(++place);
}

void setProperties(juce::Component& control, const ControlDescription& description) {
    auto& properties = control.getProperties();
    for (const auto& [name, text] : description.given)
        properties.set(name, text);
    if (description.image) properties.set(imageProperty, *description.image);
    properties.set(idProperty, description.id);
    properties.set(extraProperty, description.extra);
}

} // namespace

PanelBuilder::PanelBuilder(juce::Component& panel, juce::MidiKeyboardState& keys, KeyboardRoute* route,
                           ControlListeners listeners)
    : panel_(panel)
    , keys_(keys)
    , route_(route)
    , listeners_(listeners) {}

int PanelBuilder::idOf(const juce::Component& control) {
    return control.getProperties().getWithDefault(idProperty, -1);
}

PanelControls PanelBuilder::build(Layout layout) {
    images_ = ImageShelf(std::move(layout.images));
    for (const auto& description : layout.controls) {
        juce::Component* control = make(description);
        control->setBounds(description.bounds);
        for (const auto& [id, colour] : description.colours)
            control->setColour(id, colour);
        setProperties(*control, description);
        panel_.addAndMakeVisible(control);
    }
    orderByRows(controls_.all);
    return std::move(controls_);
}

template <typename List, typename Control>
Control* PanelBuilder::keep(List& list, std::unique_ptr<Control> control) {
    Control* pointer = control.get();
    list.push_back(pointer);
    controls_.all.push_back(std::move(control));
    return pointer;
}

juce::Component* PanelBuilder::make(const ControlDescription& description) {
    switch (description.kind) {
    case ControlKind::Knob:
        return makeKnob(description);
    case ControlKind::Combo:
        return makeCombo(description);
    case ControlKind::Button:
        return makeButton(description);
    case ControlKind::Keyboard:
        return makeKeyboard(description);
    case ControlKind::Label:
        break;
    }
    return makeLabel(description);
}

juce::Component* PanelBuilder::makeLabel(const ControlDescription& description) {
    auto* label = keep(controls_.labels, std::make_unique<juce::Label>());
    label->setJustificationType(juce::Justification(description.justification));
    juce::Font font(description.fontHeight);
    if (description.typeface.isNotEmpty()) font.setTypefaceName(description.typeface);
    label->setFont(font);
    label->setText(description.text, juce::dontSendNotification);
    label->setInterceptsMouseClicks(false, false);
    return label;
}

juce::Component* PanelBuilder::makeKnob(const ControlDescription& description) {
    const auto strip = description.image ? images_.find(*description.image) : juce::Image();
    PanelKnob* knob = nullptr;
    if (strip.isValid()) {
        auto filmKnob = std::make_unique<CKnob>();
        filmKnob->setImage(strip);
        knob = keep(controls_.knobs, std::move(filmKnob));
    } else {
        knob = keep(controls_.knobs, std::make_unique<PanelKnob>());
    }
    setUpKnob(*knob, description, listeners_.knobOwner);
    if (listeners_.knobs != nullptr) knob->addListener(listeners_.knobs);
    return knob;
}

juce::Component* PanelBuilder::makeCombo(const ControlDescription& description) {
    auto* combo = keep(controls_.combos, std::make_unique<juce::ComboBox>());
    const ComboBinding* binding = findCombo(description.id);
    if (binding != nullptr) {
        int item = 0;
        for (const char* text : binding->items)
            combo->addItem(text, ++item);
    }
    combo->setTitle(binding != nullptr ? binding->setting : "List");
    combo->setTooltip(combo->getTitle());
    combo->setWantsKeyboardFocus(true);
    if (listeners_.combos != nullptr) combo->addListener(listeners_.combos);
    return combo;
}

juce::Component* PanelBuilder::makeButton(const ControlDescription& description) {
    juce::Button* button = nullptr;
    if (!description.image) {
        button = keep(controls_.buttons, std::make_unique<juce::TextButton>());
        button->setButtonText(description.text);
    } else if (const auto strip = images_.find(*description.image); strip.isValid()) {
        auto picture = std::make_unique<PictureButton>(description.text);
        const int half = strip.getWidth() / 2;
        const auto part = [&](int x) { return strip.getClippedImage({x, 0, half, strip.getHeight()}); };
        picture->setImages(false, true, true, part(0), 1.0f, {}, part(0), 1.0f, {}, part(half), 1.0f, {});
        button = keep(controls_.buttons, std::move(picture));
    } else {
        button = keep(controls_.buttons, std::make_unique<DefaultStripButton>("button"));
    }
    const ButtonBinding* binding = findButton(description.id);
    const char* setting = binding != nullptr ? binding->setting : "Button";
    button->setTitle(description.text.isNotEmpty() ? description.text : setting);
    button->setTooltip(setting);
    button->setClickingTogglesState(description.flag);
    button->setWantsKeyboardFocus(true);
    if (listeners_.buttons != nullptr) button->addListener(listeners_.buttons);
    return button;
}

juce::Component* PanelBuilder::makeKeyboard(const ControlDescription& description) {
    auto* keyboard = keep(controls_.keyboards, std::make_unique<CPlayerKeyboard>(keys_, route_));
    keyboard->setAvailableRange(description.keys.first, description.keys.second);
    keyboard->setShowsNames(description.flag);
    return keyboard;
}

} // namespace zarno
