// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace zarno {

/// A window that shows one line of text.
class PlainEditor final : public juce::AudioProcessorEditor {
  public:
    PlainEditor(juce::AudioProcessor& processor, const juce::String& text)
        : AudioProcessorEditor(processor) {
        label_.setText(text, juce::dontSendNotification);
        label_.setJustificationType(juce::Justification::centred);
        addAndMakeVisible(label_);
        setSize(600, 250);
    }

    void resized() override { label_.setBounds(getLocalBounds()); }
    void paint(juce::Graphics& graphics) override {
        graphics.fillAll(findColour(juce::ResizableWindow::backgroundColourId));
    }

  private:
    juce::Label label_;
};

} // namespace zarno
