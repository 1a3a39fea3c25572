// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CSpinner.h"

namespace zarno {

// Covers the window while an instrument loads: spinner, text and a bar with the fraction done.
class CLoadingComponent final : public juce::Component {
  public:
    CLoadingComponent();

    // 0..1; below 0: unknown, the bar moves by itself.
    void setProgress(double progress) { progress_ = progress; }

    void paint(juce::Graphics&) override;
    void resized() override;
    void visibilityChanged() override;

  private:
    double progress_ = -1.0;
    juce::ProgressBar bar_{progress_};
    juce::Label hint_{"Hint", "Please wait..."};
    CSpinner spinner_;
};

} // namespace zarno
