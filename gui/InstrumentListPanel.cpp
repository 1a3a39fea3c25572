// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/InstrumentListPanel.h"

#include "gui/Theme.h"

namespace zarno {

InstrumentListPanel::InstrumentListPanel(juce::ListBoxModel& model, std::function<juce::StringArray()> titles)
    : titles_(std::move(titles)) {
    list_.setModel(&model);
    list_.setRowHeight(22);
    list_.setColour(juce::ListBox::backgroundColourId, juce::Colours::white); // as its even rows
    list_.setTitle("Instrument list");
    list_.addMouseListener(this, true);
    addAndMakeVisible(list_);
}

void InstrumentListPanel::open(int row) {
    typed_.clear();
    list_.updateContent();
    setVisible(true);
    toFront(false);
    if (row >= 0) list_.selectRow(row);
    if (list_.isShowing()) list_.grabKeyboardFocus();
}

void InstrumentListPanel::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body).withAlpha(0.75f));
    g.setColour(juce::Colours::black.withAlpha(0.5f));
    g.drawRect(list_.getBounds().expanded(1), 1);
}

void InstrumentListPanel::resized() {
    list_.setBounds(getLocalBounds().reduced(std::min(24, getWidth() / 10), std::min(14, getHeight() / 10)));
}

void InstrumentListPanel::mouseDown(const juce::MouseEvent& event) {
    if (event.eventComponent == this && onClose) onClose();
}

// On a row: the model loads; the list is done.
void InstrumentListPanel::mouseDoubleClick(const juce::MouseEvent& event) {
    const auto at = event.getEventRelativeTo(&list_).getPosition();
    const bool isOnRow = at.x < list_.getVisibleRowWidth() && list_.getRowContainingPosition(at.x, at.y) >= 0;
    if (event.eventComponent != this && isOnRow && onClose) onClose();
}

int InstrumentListPanel::rowFor(const juce::String& typed, const juce::StringArray& titles) {
    if (typed.isEmpty()) return -1;
    for (int i = 0; i < titles.size(); ++i)
        if (titles[i].startsWithIgnoreCase(typed)) return i;
    for (int i = 0; i < titles.size(); ++i)
        if (titles[i].containsIgnoreCase(typed)) return i;
    return -1;
}

bool InstrumentListPanel::keyTyped(const juce::KeyPress& key) {
    if (key == juce::KeyPress::escapeKey) {
        if (onClose) onClose();
        return true;
    }
    if (key == juce::KeyPress::returnKey) {
        const int row = list_.getSelectedRow();
        if (onClose) onClose();
        if (row >= 0 && onPick) onPick(row);
        return true;
    }
    const auto character = key.getTextCharacter();
    if (character < 32 || character == 127 || key.getModifiers().isCommandDown() ||
        key.getModifiers().isAltDown())
        return false;
    constexpr juce::uint32 pauseMs = 1000;
    const auto now = juce::Time::getMillisecondCounter();
    if (now - typedAt_ > pauseMs) typed_.clear();
    typedAt_ = now;
    typed_ += juce::String::charToString(character);
    const int row = rowFor(typed_, titles_());
    if (row >= 0) list_.selectRow(row);
    return true;
}

} // namespace zarno
