// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/StatusBar.h"

#include "gui/Theme.h"

namespace zarno {
namespace {

using juce::Colour;

void setUpText(juce::Label& label, std::uint32_t colour, juce::Justification justification) {
    label.setFont(juce::Font(theme::smallTextHeight));
    label.setColour(juce::Label::textColourId, Colour(colour));
    label.setJustificationType(justification);
    label.setBorderSize({});
    label.setMinimumHorizontalScale(1.0f);
}

} // namespace

StatusBar::StatusBar() {
    add(previous_, juce::CharPointer_UTF8("\xE2\x97\x80"), "Previous instrument", &StatusBar::onPrevious);
    add(next_, juce::CharPointer_UTF8("\xE2\x96\xB6"), "Next instrument", &StatusBar::onNext);
    add(instrument_, {}, "Instrument menu", &StatusBar::onInstrumentMenu);
    add(library_, "Library", "Search the library", &StatusBar::onLibrary);
    add(load_, "Load Instrument", "Load an instrument file", &StatusBar::onLoad);
    add(group_, "Group", "Group menu", &StatusBar::onGroupMenu);
    add(about_, "About", "About this instrument", &StatusBar::onAbout);
    add(audio_, "Audio", "Audio and MIDI settings", &StatusBar::onAudio);
    add(zoom_, {}, "Zoom", &StatusBar::onZoom);
    add(action_, {}, "Do something about it", &StatusBar::onNotice);
    add(panic_, "Panic", "Stop all notes and reset all controllers", &StatusBar::onPanic);
    action_.setColour(juce::TextButton::textColourOffId, Colour(theme::warning));
    setUpText(notice_, theme::quietText, juce::Justification::centredLeft);
    setUpText(voices_, theme::quietText, juce::Justification::centredRight);
    setUpText(cpu_, theme::quietText, juce::Justification::centredRight);
    cpu_.setTooltip("Share of the time that audio may take");
    voices_.setInterceptsMouseClicks(false, false);
    for (juce::Component* part : std::initializer_list<juce::Component*>{&notice_, &voices_, &cpu_, &meter_})
        addAndMakeVisible(part);
    setTitle("Status");
    setFocusContainerType(FocusContainerType::focusContainer);
    show({});
}

void StatusBar::add(juce::TextButton& button, const juce::String& text, const juce::String& title,
                    Action StatusBar::*action) {
    button.setButtonText(text);
    button.setTitle(title);
    button.setTooltip(title);
    button.setWantsKeyboardFocus(true);
    button.setColour(juce::TextButton::buttonColourId, Colour(theme::quietButton));
    button.onClick = [this, action, &button] {
        if (this->*action) (this->*action)(button);
    };
    addAndMakeVisible(button);
}

void StatusBar::show(const State& state) {
    meter_.show(state.peak);
    if (state == state_ && voices_.getText().isNotEmpty()) return;
    const bool isNewText = state.notice != state_.notice || state.hasAudioSettings != state_.hasAudioSettings;
    state_ = state;
    instrument_.setButtonText(state.instrument);
    previous_.setEnabled(state.canStepBack);
    next_.setEnabled(state.canStepOn);
    notice_.setText(state.notice.text, juce::dontSendNotification);
    notice_.setTooltip(state.notice.text);
    notice_.setColour(juce::Label::textColourId,
                      Colour(state.notice.isWarning ? theme::warning : theme::quietText));
    audio_.setVisible(state.hasAudioSettings);
    for (auto* quiet : {&voices_, &cpu_}) // a warning takes their place
        quiet->setVisible(!state.notice.isWarning);
    action_.setVisible(state.notice.action != Notice::Action::None);
    action_.setButtonText(juce::CharPointer_UTF8(state.notice.actionText()));
    action_.setTitle(action_.getButtonText());
    voices_.setText(juce::String(state.voices) + (state.voices == 1 ? " voice" : " voices"),
                    juce::dontSendNotification);
    cpu_.setText("CPU " + juce::String(state.cpuPercent) + " %", juce::dontSendNotification);
    zoom_.setButtonText(juce::String(state.zoomPercent) + " %");
    if (isNewText) resized();
}

std::vector<juce::Rectangle<int>> StatusBar::occupiedPlaces() const {
    std::vector<juce::Rectangle<int>> places;
    for (const auto* part : getChildren())
        if (part->isVisible() && part != &notice_) places.push_back(part->getBounds());
    return places;
}

void StatusBar::paint(juce::Graphics& g) {
    g.fillAll(Colour(theme::bar));
    g.setColour(juce::Colours::black.withAlpha(0.5f));
    g.fillRect(0, 0, getWidth(), 1);
}

void StatusBar::resized() {
    auto area = getLocalBounds().reduced(6, 4);
    auto upper = area.removeFromTop(22);
    area.removeFromTop(3);
    constexpr int gap = 4;
    const auto left = [gap](juce::Rectangle<int>& line, juce::Component& part, int width) {
        part.setBounds(line.removeFromLeft(width));
        line.removeFromLeft(gap);
    };
    const auto right = [gap](juce::Rectangle<int>& line, juce::Component& part, int width) {
        part.setBounds(line.removeFromRight(width));
        line.removeFromRight(gap);
    };
    left(upper, previous_, 24);
    left(upper, next_, 24);
    right(upper, zoom_, 52);
    if (audio_.isVisible()) right(upper, audio_, 50);
    right(upper, about_, 50);
    right(upper, group_, 50);
    right(upper, load_, 112);
    right(upper, library_, 58);
    instrument_.setBounds(upper);
    right(area, panic_, 50);
    right(area, meter_, 66);
    if (cpu_.isVisible()) right(area, cpu_, 58);
    if (voices_.isVisible()) right(area, voices_, 62);
    if (action_.isVisible()) {
        const int width = 16 + juce::Font(theme::textHeight).getStringWidth(action_.getButtonText());
        const int text = juce::Font(theme::smallTextHeight).getStringWidth(notice_.getText()) + 8;
        notice_.setBounds(area.removeFromLeft(std::max(0, std::min(text, area.getWidth() - width))));
        action_.setBounds(area.removeFromLeft(width));
    } else {
        notice_.setBounds(area);
    }
}

} // namespace zarno
