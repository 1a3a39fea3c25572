// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// The output's level from -60 to 0 dBFS, and a mark that stays lit after clipping until it is clicked.
class LevelMeter final : public juce::Component, public juce::SettableTooltipClient {
  public:
    LevelMeter();
    // Linear peak, 1 is full scale.
    void show(float peak);
    bool isClipMarkLit() const { return isClipped_; }
    // Which part of the meter is filled at this peak.
    static float fractionFor(float peak);

    void paint(juce::Graphics&) override;
    void mouseDown(const juce::MouseEvent&) override;

  private:
    float shown_ = 0.0f;
    bool isClipped_ = false;
};

} // namespace zarno
