// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CLoadingComponent.h"

#include "gui/Theme.h"

namespace zarno {

CLoadingComponent::CLoadingComponent() {
    hint_.setJustificationType(juce::Justification::centred);
    hint_.setFont(juce::Font(theme::textHeight));
    name_.setJustificationType(juce::Justification::centred);
    name_.setFont(juce::Font(theme::titleHeight));
    cancel_.setMouseCursor(juce::MouseCursor::NormalCursor);
    cancel_.onClick = [this] {
        if (onCancel) onCancel();
    };
    addAndMakeVisible(name_);
    addAndMakeVisible(cancel_);
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
    auto area = getLocalBounds().withSizeKeepingCentre(std::min(320, getWidth()), std::min(184, getHeight()));
    spinner_.setBounds(area.removeFromTop(64).withSizeKeepingCentre(64, 64));
    name_.setBounds(area.removeFromTop(30));
    hint_.setBounds(area.removeFromTop(24));
    area.removeFromTop(6);
    bar_.setBounds(area.removeFromTop(6).reduced(40, 0));
    area.removeFromTop(14);
    cancel_.setBounds(area.removeFromTop(26).withSizeKeepingCentre(80, 26));
}

} // namespace zarno
