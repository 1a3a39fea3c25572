// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Browser.h"

#include "gui/Theme.h"

namespace zarno {
namespace {

using juce::Colour;

constexpr int rowHeight = 22, headHeight = 26;

} // namespace

Browser::Browser() {
    search_.setTitle("Search the library");
    search_.setTextToShowWhenEmpty("Search", Colour(theme::quietText));
    search_.setFont(juce::Font(theme::textHeight));
    search_.setIndents(8, 5);
    search_.setSelectAllWhenFocused(true);
    search_.onTextChange = [this] { applySearch(); };
    list_.setModel(this);
    list_.setRowHeight(rowHeight);
    list_.setTitle("Instruments");
    list_.setColour(juce::ListBox::backgroundColourId, Colour(theme::field));
    nothing_.setColour(juce::Label::textColourId, Colour(theme::quietText));
    nothing_.setFont(juce::Font(theme::textHeight));
    nothing_.setJustificationType(juce::Justification::centred);
    nothing_.setInterceptsMouseClicks(false, false);
    refresh_.setTooltip("Look for instruments again");
    plain_.setTooltip("All instruments in one list, without folders");
    refresh_.onClick = [this] {
        if (onRefresh) onRefresh();
    };
    plain_.onClick = [this] {
        if (onPlainList) onPlainList();
    };
    close_.onClick = [this] { close(); };
    for (juce::Component* part : std::initializer_list<juce::Component*>{&search_, &refresh_, &plain_, &close_,
                                                                         &list_})
        addAndMakeVisible(part);
    addChildComponent(nothing_);
    setTitle("Library");
    setFocusContainerType(FocusContainerType::keyboardFocusContainer);
}

void Browser::setLibrary(const juce::StringArray& titles, const juce::StringArray& paths,
                         const juce::StringArray& folders, const juce::StringArray& recent) {
    view_.setLibrary(titles, paths, folders, recent);
    view_.search(search_.getText());
    showRows();
    list_.selectRow(view_.rowOf(current_), true);
}

void Browser::open(int current) {
    current_ = current;
    search_.setText({}, false);
    view_.search({});
    setVisible(true);
    toFront(false);
    showRows();
    list_.selectRow(view_.rowOf(current));
    if (isShowing()) search_.grabKeyboardFocus();
}

void Browser::search(const juce::String& text) {
    search_.setText(text, false);
    applySearch();
}

void Browser::applySearch() {
    view_.search(search_.getText());
    showRows();
    choose(-1, 1);
}

void Browser::showRows() {
    list_.updateContent();
    list_.deselectAllRows();
    list_.repaint();
    nothing_.setVisible(view_.rows().empty());
    nothing_.setText(search_.isEmpty() ? juce::String("No instruments in the library.")
                                       : "No instrument matches \"" + search_.getText() + "\".",
                     juce::dontSendNotification);
}

const LibraryView::Row* Browser::rowAt(int row) const {
    const auto& rows = view_.rows();
    return row >= 0 && static_cast<std::size_t>(row) < rows.size() ? &rows[static_cast<std::size_t>(row)]
                                                                   : nullptr;
}

// The next instrument in that direction; headings are passed over.
void Browser::choose(int from, int direction) {
    for (int row = from + direction; const auto* candidate = rowAt(row); row += direction)
        if (!candidate->isHeading()) return list_.selectRow(row);
}

void Browser::pick(int row) {
    const auto* chosen = rowAt(row);
    if (chosen == nullptr || chosen->isHeading()) return;
    const int index = chosen->index;
    close();
    if (onPick) onPick(index);
}

void Browser::close() {
    setVisible(false);
    if (onClose) onClose();
}

bool Browser::keyPressed(const juce::KeyPress& key) {
    using juce::KeyPress;
    const int row = list_.getSelectedRow();
    if (key == KeyPress::escapeKey)
        close();
    else if (key == KeyPress::returnKey)
        pick(row);
    else if (key == KeyPress::downKey)
        choose(row, 1);
    else if (key == KeyPress::upKey)
        choose(row, -1);
    else
        return false;
    return true;
}

juce::String Browser::getNameForRow(int row) {
    const auto* shown = rowAt(row);
    return shown != nullptr ? shown->text : juce::String();
}

void Browser::paintListBoxItem(int row, juce::Graphics& g, int width, int height, bool isSelected) {
    const auto* shown = rowAt(row);
    if (shown == nullptr) return;
    auto area = juce::Rectangle<int>(width, height).reduced(10, 0);
    g.setFont(juce::Font(theme::textHeight));
    if (shown->isHeading()) {
        g.setFont(juce::Font(theme::smallTextHeight).boldened());
        g.setColour(Colour(theme::quietText));
        g.drawText(shown->text, area, juce::Justification::centredLeft, true);
        return;
    }
    if (isSelected) g.fillAll(Colour(theme::accent));
    area.removeFromLeft(10);
    if (shown->detail.isNotEmpty()) {
        g.setColour(Colour(isSelected ? theme::accentText : theme::quietText));
        g.drawText(shown->detail, area.removeFromRight(area.getWidth() * 2 / 5), juce::Justification::centredRight,
                   true);
    }
    g.setColour(Colour(isSelected ? theme::accentText : theme::text));
    g.drawText(shown->text, area, juce::Justification::centredLeft, true);
}

void Browser::paint(juce::Graphics& g) {
    g.fillAll(Colour(theme::body));
}

void Browser::resized() {
    auto area = getLocalBounds().reduced(10, 8);
    auto head = area.removeFromTop(headHeight);
    close_.setBounds(head.removeFromRight(58));
    plain_.setBounds(head.removeFromRight(86).withTrimmedRight(6));
    refresh_.setBounds(head.removeFromRight(76).withTrimmedRight(6));
    search_.setBounds(head.withTrimmedRight(6));
    list_.setBounds(area.withTrimmedTop(8));
    nothing_.setBounds(list_.getBounds());
}

} // namespace zarno
