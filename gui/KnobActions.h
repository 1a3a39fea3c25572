// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/EngineAccess.h"
#include "gui/PanelBuilder.h"
#include "gui/ValueBubble.h"

namespace zarno {

// What the panel's knobs do: write into the engine, show their value, reset, ask for a value. Message thread.
class KnobActions final : public KnobOwner {
  public:
    // Where bubbles go: their parent's area, and what they shall not cover.
    struct Surroundings {
        juce::Component& parent;
        std::function<std::vector<juce::Rectangle<int>>()> occupied;
    };
    KnobActions(EditorLink& link, EngineAccess& access, const GroupSelection& selection,
                Surroundings surroundings);

    void moved(juce::Slider& knob);
    void dragStarted(juce::Slider& knob) { dragged_ = &knob; }
    void dragEnded(juce::Slider& knob);
    // Before the controls go: the mouse lets go of a knob that it holds, since that gets no event any more.
    void release();

    void resetKnob(PanelKnob&) override;
    void showKnobMenu(PanelKnob&) override;
    void typeKnobValue(PanelKnob&) override;

    ValueBubble& bubble() { return bubble_; }

  private:
    double filePosition(int id);
    juce::Rectangle<int> placeOf(const juce::Component& knob) const;

    EditorLink& link_;
    EngineAccess& access_;
    const GroupSelection& selection_;
    Surroundings surroundings_;
    ValueBubble bubble_;
    juce::Slider* dragged_ = nullptr; // the knob that the mouse holds
};

} // namespace zarno
