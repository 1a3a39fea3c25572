// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <vector>

namespace zarno {

// Where a bubble of this size goes beside `knob`: the nearest place within `area` that covers none of `occupied`,
// above the knob if it can be. Above all the knob itself stays free.
juce::Rectangle<int> bubblePlace(juce::Rectangle<int> knob, juce::Point<int> size,
                                 const std::vector<juce::Rectangle<int>>& occupied, juce::Rectangle<int> area);

// The value of the knob that is turned, beside it; and the field in which a value is typed. Message thread.
class ValueBubble final : public juce::Component, private juce::Timer {
  public:
    using Done = std::function<void(const juce::String& typed)>;

    ValueBubble();
    // Shows the text for a while after the last call. Coordinates of the parent.
    void show(const juce::String& text, juce::Rectangle<int> knob,
              const std::vector<juce::Rectangle<int>>& occupied);
    // Asks for a value. `done` is called when the user presses Return, and not when he does something else.
    void ask(const juce::String& value, juce::Rectangle<int> knob,
             const std::vector<juce::Rectangle<int>>& occupied, Done done);
    void hide();
    juce::String text() const { return text_; }
    juce::TextEditor& field() { return field_; }

    void paint(juce::Graphics&) override;
    void resized() override;

  private:
    void timerCallback() override;
    void place(int width, juce::Rectangle<int> knob, const std::vector<juce::Rectangle<int>>& occupied);

    juce::String text_;
    juce::TextEditor field_;
    Done done_;
};

} // namespace zarno
