// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <vector>

namespace zarno {

// A ring of petals that turns by one petal at every tick while it can be seen.
class CSpinner final : public juce::Component, private juce::Timer {
  public:
    // One petal alone, lit to a level of 0..1: an activity light.
    class ProgressPetal final : public juce::Component {
      public:
        void setLevel(float level);
        void paint(juce::Graphics&) override;

      private:
        float level_ = 0.0f;
    };

    CSpinner();

    // Round petals (the default) or bars.
    void setRound(bool isRound);

    void paint(juce::Graphics&) override;
    void resized() override;
    void visibilityChanged() override;

  private:
    static constexpr int drawnPetals = 12; // of 13 angles: the last is a full turn and would hide the first
    static constexpr int tickMs = 75;

    void timerCallback() override;

    std::vector<float> angles_; // in turns
    juce::Path petal_;
    juce::Point<float> pivot_;
    bool isRound_ = true;
    int brightest_ = 0;
};

} // namespace zarno
