// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/StatusBar.h"

#include "gui/Theme.h"

namespace zarno {
namespace {

juce::String activity(const StatusBar::State& state) {
    if (state.problem.isNotEmpty()) return state.problem;
    if (state.hasFailed) return "Loading failed";
    const auto voices = state.voices == 1 ? juce::String("1 voice") : juce::String(state.voices) + " voices";
    return voices + (state.isStreaming ? ", streaming" : ", in memory");
}

} // namespace

StatusBar::StatusBar() {
    const juce::String dots(juce::CharPointer_UTF8("\xE2\x80\xA6"));
    add(load_, "Load" + dots, "Load instrument", &StatusBar::onLoad);
    add(instruments_, "Instrument", "Instrument menu", &StatusBar::onInstrumentMenu);
    add(groups_, "Group", "Group menu", &StatusBar::onGroupMenu);
    add(list_, "List", "Instrument list", &StatusBar::onList);
    add(missing_, {}, "Missing samples", &StatusBar::onMissing);
    add(locate_, "Locate" + dots, "Locate the missing instrument", &StatusBar::onLocate);
    add(tryAgain_, "Try again", "Load failed, try again", &StatusBar::onTryAgain);
    add(zoom_, {}, "Zoom", &StatusBar::onZoom);
    for (auto* button : {&load_, &instruments_, &groups_, &list_, &zoom_, &missing_, &locate_, &tryAgain_})
        button->setColour(juce::TextButton::buttonColourId, juce::Colour(theme::quietButton));
    for (auto* button : {&missing_, &locate_, &tryAgain_})
        button->setColour(juce::TextButton::textColourOffId, juce::Colour(theme::warning));
    activityText_.setFont(juce::Font(12.0f));
    addAndMakeVisible(activityText_);
    addAndMakeVisible(light_);
    setTitle("Status");
    show({});
}

juce::TextButton& StatusBar::add(juce::TextButton& button, const juce::String& text,
                                 const juce::String& title, Action StatusBar::*action) {
    button.setButtonText(text);
    button.setTitle(title);
    button.setTooltip(title);
    button.setWantsKeyboardFocus(true);
    button.onClick = [this, action, &button] {
        if (this->*action) (this->*action)(button);
    };
    addAndMakeVisible(button);
    return button;
}

void StatusBar::show(const State& state) {
    if (state == state_ && activityText_.getText().isNotEmpty()) return;
    state_ = state;
    activityText_.setText(activity(state), juce::dontSendNotification);
    activityText_.setColour(juce::Label::textColourId,
                            juce::Colour(state.hasFailed || state.problem.isNotEmpty() ? theme::warning : theme::quietText));
    activityText_.setTooltip(state.problem); // the bar is narrow
    light_.setLevel(state.voices > 0 ? 1.0f : 0.0f);
    missing_.setButtonText(state.missing);
    missing_.setVisible(state.missing.isNotEmpty());
    locate_.setVisible(state.hasFailed && state.canLocate);
    tryAgain_.setVisible(state.hasFailed && !state.canLocate);
    zoom_.setButtonText(juce::String(state.zoomPercent) + " %");
    resized();
}

void StatusBar::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::bar));
    g.setColour(juce::Colours::black.withAlpha(0.5f));
    g.fillRect(0, 0, getWidth(), 1);
}

void StatusBar::resized() {
    auto area = getLocalBounds().reduced(5, 4);
    const auto fromLeft = [&area](juce::Component& part, int width) {
        part.setBounds(area.removeFromLeft(width));
        area.removeFromLeft(4);
    };
    fromLeft(load_, 54);
    fromLeft(instruments_, 74);
    fromLeft(groups_, 50);
    fromLeft(list_, 38);
    zoom_.setBounds(area.removeFromRight(50));
    if (tryAgain_.isVisible()) tryAgain_.setBounds(area.removeFromRight(70).withTrimmedRight(4));
    if (locate_.isVisible()) locate_.setBounds(area.removeFromRight(70).withTrimmedRight(4));
    if (missing_.isVisible()) missing_.setBounds(area.removeFromRight(132).withTrimmedRight(4));
    light_.setBounds(area.removeFromLeft(14).withSizeKeepingCentre(9, 9));
    activityText_.setBounds(area);
}

} // namespace zarno
