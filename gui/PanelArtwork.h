// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace zarno {

// The built-in pictures, drawn from vectors, so that they are sharp at every zoom. Message thread.

inline constexpr int defaultBackgroundWidth = 593, defaultBackgroundHeight = 242;

// Draws the background of panels that bring none, 593 x 242 from the origin. Keeps one rendering at the scale
// of the last call.
class DefaultBackground {
  public:
    void draw(juce::Graphics&);

  private:
    juce::Image rendering_;
    float scale_ = 0.0f;
};

// The button of layouts with a picture of their own: its text stands on the picture, and it shows its focus.
class PictureButton final : public juce::ImageButton {
  public:
    explicit PictureButton(juce::String text)
        : ImageButton("button")
        , text_(std::move(text)) {}
    void paintButton(juce::Graphics&, bool isOver, bool isDown) override;

  private:
    const juce::String text_;
};

// The button of layouts whose image number leads nowhere: a strip of 34 x 17, its left half the button as it
// is, its right half pressed, fitted into the button.
class DefaultStripButton final : public juce::ImageButton {
  public:
    explicit DefaultStripButton(const juce::String& name)
        : ImageButton(name) {}
    void paintButton(juce::Graphics&, bool, bool isDown) override;
};

} // namespace zarno
