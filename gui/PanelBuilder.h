// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/ImageShelf.h"
#include "gui/LayoutReader.h"
#include "gui/PanelKnob.h"

#include <juce_audio_utils/juce_audio_utils.h>

#include <memory>

namespace zarno {

class CPlayerKeyboard;
class KeyboardRoute;

// Who hears of the controls; each may be null.
struct ControlListeners {
    juce::Slider::Listener* knobs = nullptr;
    juce::Button::Listener* buttons = nullptr;
    juce::ComboBox::Listener* combos = nullptr;
    KnobOwner* knobOwner = nullptr;
};

// A panel's controls by kind, in creation order. The panel owns them all; these only point.
struct PanelControls {
    std::vector<std::unique_ptr<juce::Component>> all;
    std::vector<juce::Label*> labels;
    std::vector<juce::Slider*> knobs; // CKnob and plain rotary sliders
    std::vector<juce::ComboBox*> combos;
    std::vector<juce::Button*> buttons; // plain and image buttons
    std::vector<CPlayerKeyboard*> keyboards;
};

// Makes components of descriptions. Message thread.
class PanelBuilder {
  public:
    PanelBuilder(juce::Component& panel, juce::MidiKeyboardState& keys, KeyboardRoute* route,
                 ControlListeners listeners);

    // Adds one visible component to the panel for every control of the layout.
    PanelControls build(Layout layout);

    // What a control drives: its property "2", -1 when it drives nothing.
    static int idOf(const juce::Component& control);

  private:
    juce::Component* make(const ControlDescription& description);
    juce::Component* makeLabel(const ControlDescription& description);
    juce::Component* makeKnob(const ControlDescription& description);
    juce::Component* makeCombo(const ControlDescription& description);
    juce::Component* makeButton(const ControlDescription& description);
    juce::Component* makeKeyboard(const ControlDescription& description);
    template <typename List, typename Control>
    Control* keep(List& list, std::unique_ptr<Control> control);

    juce::Component& panel_;
    juce::MidiKeyboardState& keys_;
    KeyboardRoute* route_;
    ControlListeners listeners_;
    ImageShelf images_{{}};
    PanelControls controls_;
};

} // namespace zarno
