// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/PanelKnob.h"

namespace zarno {

// A rotary slider that shows its value as one frame of a picture strip.
class CKnob final : public PanelKnob {
  public:

    // Square frames side by side when the picture is wider than tall, else stacked. Takes the size of a
    // frame.
    void setImage(const juce::Image& strip);
    // From now on the strip is horizontal and its frames have the knob's own width and height.
    void setFramesOfOwnSize(bool ownSize);

    int frameCount() const;
    // Frame 0 covers the first two steps of the range and the last one is reached only at the maximum itself,
    // on purpose: strips in the field are drawn for it.
    static int frameAt(double value, double maximum, int frameCount);

    void paint(juce::Graphics&) override;

  private:
    juce::Rectangle<int> frameArea(int frame) const;

    juce::Image strip_;
    int frames_ = 0, frameSize_ = 0;
    bool isHorizontal_ = false, ownSize_ = false;
};

} // namespace zarno
