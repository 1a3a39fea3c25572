// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/WindowMenus.h"

#include <algorithm>
#include <cstdlib>

namespace zarno {
namespace {

// A menu as high as a small screen.
constexpr int listedSamples = 24;

// The name alone; instruments of other systems write paths with backslashes.
juce::String fileName(const juce::String& path) {
    return path.fromLastOccurrenceOf("/", false, false).fromLastOccurrenceOf("\\", false, false);
}

void addSamples(juce::PopupMenu& menu, const juce::StringArray& paths, const char* reason) {
    for (int i = 0; i < std::min(paths.size(), listedSamples); ++i)
        menu.addItem(-1, fileName(paths[i]) + " - " + reason, false, false);
    if (paths.size() > listedSamples)
        menu.addItem(-1, juce::String(paths.size() - listedSamples) + " more - " + reason, false, false);
}

} // namespace

juce::PopupMenu makeInstrumentMenu(const juce::StringArray& titles, int current) {
    juce::PopupMenu menu;
    menu.addSectionHeader("Instrument List");
    for (int i = 0; i < titles.size(); ++i)
        menu.addItem(i + 1, titles[i], true, i == current);
    return menu;
}

juce::PopupMenu makeGroupMenu(const std::vector<GroupEntry>& groups, const std::vector<int>& selection) {
    juce::PopupMenu menu;
    menu.addSectionHeader("Group List");
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const int index = static_cast<int>(i);
        juce::PopupMenu::Item item(groups[i].name);
        item.setID(index + 1);
        item.setTicked(std::find(selection.begin(), selection.end(), index) != selection.end());
        item.shortcutKeyDescription = groups[i].note;
        menu.addItem(std::move(item));
    }
    if (groups.size() < 2) return menu;
    menu.addSeparator();
    menu.addItem(-1, "With Ctrl or Shift: add or take away", false);
    return menu;
}

juce::String missingText(const EditorLink::Missing& missing) {
    const int count = missing.notFound.size() + missing.unsupported.size();
    if (count == 0) return {};
    return count == 1 ? juce::String("1 sample missing") : juce::String(count) + " samples missing";
}

juce::PopupMenu makeMissingMenu(const EditorLink::Missing& missing) {
    juce::PopupMenu menu;
    menu.addSectionHeader(missingText(missing));
    addSamples(menu, missing.notFound, "not found");
    addSamples(menu, missing.unsupported, "format not supported");
    menu.addSeparator();
    menu.addItem(locateItemId, juce::CharPointer_UTF8("Locate\xE2\x80\xA6"));
    return menu;
}

juce::PopupMenu makeZoomMenu(int percent, int largest) {
    juce::PopupMenu menu;
    menu.addSectionHeader("Zoom");
    for (const int step : zoomPercents)
        menu.addItem(step, juce::String(step) + " %", step <= largest, step == percent);
    menu.addSeparator();
    menu.addItem(-1, "Ctrl with wheel, +, - and 0", false);
    return menu;
}

int zoomFromSetting(const juce::String& text) {
    const int wanted = text.getIntValue();
    if (wanted <= 0) return 100;
    return *std::min_element(std::begin(zoomPercents), std::end(zoomPercents),
                             [wanted](int a, int b) { return std::abs(a - wanted) < std::abs(b - wanted); });
}

} // namespace zarno
