// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/FirstRunPanel.h"

#include "gui/Theme.h"

namespace zarno {
namespace {

void setUp(juce::Label& label, const juce::String& text, float height, std::uint32_t colour) {
    label.setText(text, juce::dontSendNotification);
    label.setFont(juce::Font(height));
    label.setColour(juce::Label::textColourId, juce::Colour(colour));
    label.setJustificationType(juce::Justification::centred);
    label.setMinimumHorizontalScale(0.7f);
}

} // namespace

FirstRunPanel::FirstRunPanel() {
    setUp(title_, "Your library is empty. Put instruments (.zse, .zs2) into this folder:", theme::textHeight,
          theme::text);
    setUp(folder_, {}, theme::smallTextHeight, theme::quietText);
    setUp(hint_, "You can also drop an instrument file onto this window.", theme::smallTextHeight,
          theme::quietText);
    load_.setButtonText(juce::CharPointer_UTF8("Load Instrument\xE2\x80\xA6"));
    openFolder_.onClick = [this] {
        if (onOpenFolder) onOpenFolder();
    };
    load_.onClick = [this] {
        if (onLoad) onLoad();
    };
    for (juce::Component* part :
         std::initializer_list<juce::Component*>{&title_, &folder_, &hint_, &openFolder_, &load_})
        addAndMakeVisible(part);
    setTitle("First steps");
    setFocusContainerType(FocusContainerType::focusContainer);
}

void FirstRunPanel::setFolder(const juce::String& path) {
    folder_.setText(path, juce::dontSendNotification);
    folder_.setTooltip(path);
}

void FirstRunPanel::paint(juce::Graphics& g) {
    g.setColour(juce::Colour(theme::body));
    g.fillRoundedRectangle(getLocalBounds().toFloat(), theme::corner);
    g.setColour(juce::Colour(theme::outline));
    g.drawRoundedRectangle(getLocalBounds().toFloat().reduced(0.5f), theme::corner, 1.0f);
}

void FirstRunPanel::resized() {
    auto area = getLocalBounds().reduced(12, 8);
    area = area.withSizeKeepingCentre(area.getWidth(), std::min(area.getHeight(), 104));
    title_.setBounds(area.removeFromTop(24));
    folder_.setBounds(area.removeFromTop(20));
    hint_.setBounds(area.removeFromBottom(20));
    auto buttons = area.withSizeKeepingCentre(250, 26);
    openFolder_.setBounds(buttons.removeFromLeft(100));
    load_.setBounds(buttons.removeFromRight(140));
}

} // namespace zarno
