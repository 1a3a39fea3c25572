// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CLoadingComponent.h"

#include "gui/Theme.h"

namespace zarno {

CLoadingComponent::CLoadingComponent() {
    hint_.setJustificationType(juce::Justification::centred);
    hint_.setFont(juce::Font(14.0f));
    bar_.setPercentageDisplay(false);
    addAndMakeVisible(bar_);
    addAndMakeVisible(hint_);
    addChildComponent(spinner_);
    setTitle("Loading");
    setMouseCursor(juce::MouseCursor::WaitCursor);
    setInterceptsMouseClicks(true, false); // the cursor is the same over all that lies on it
}

// The spinner's clock runs only while the overlay itself is seen.
void CLoadingComponent::visibilityChanged() {
    spinner_.setVisible(isVisible());
}

void CLoadingComponent::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body).withAlpha(0.93f));
}

void CLoadingComponent::resized() {
    auto area = getLocalBounds().withSizeKeepingCentre(std::min(260, getWidth()), std::min(120, getHeight()));
    spinner_.setBounds(area.removeFromTop(64).withSizeKeepingCentre(64, 64));
    hint_.setBounds(area.removeFromTop(34));
    bar_.setBounds(area.removeFromTop(6).reduced(20, 0));
}

} // namespace zarno
