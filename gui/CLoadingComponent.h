// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CSpinner.h"

#include <functional>

namespace zarno {

// Covers the window while an instrument loads: its name, spinner, text, a bar with the fraction done, Cancel.
class CLoadingComponent final : public juce::Component {
  public:
    CLoadingComponent();

    std::function<void()> onCancel;
    void setInstrument(const juce::String& name) { name_.setText(name, juce::dontSendNotification); }
    // 0..1; below 0: unknown, the bar moves by itself.
    void setProgress(double progress) { progress_ = progress; }

    void paint(juce::Graphics&) override;
    void resized() override;
    void visibilityChanged() override;

  private:
    double progress_ = -1.0;
    juce::ProgressBar bar_{progress_};
    juce::Label hint_{"Hint", "Please wait..."};
    juce::Label name_;
    juce::TextButton cancel_{"Cancel"};
    CSpinner spinner_;
};

} // namespace zarno
