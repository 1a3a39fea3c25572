// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/EditorLink.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <vector>

namespace zarno {

// The window's menus, made afresh each time one opens. Item ids: index + 1 where items are indices.

// "Instrument List" above the library's titles, the current one ticked.
juce::PopupMenu makeInstrumentMenu(const juce::StringArray& titles, int current);

// "Group List" above the groups' names, the selected ones ticked; a last line says what modifiers do.
struct GroupEntry {
    juce::String name;
    const char* note; // why a choice of another group does not switch it off; may be empty
};
juce::PopupMenu makeGroupMenu(const std::vector<GroupEntry>& groups, const std::vector<int>& selection);

// What is missing and why; one item that can be chosen.
inline constexpr int locateItemId = 1;
juce::PopupMenu makeMissingMenu(const EditorLink::Missing& missing);
juce::String missingText(const EditorLink::Missing& missing); // "3 samples missing"; empty when none is

// Ids are the percentages. Those above `largest` cannot be chosen: the display has no room for them.
juce::PopupMenu makeZoomMenu(int percent, int largest);
inline constexpr int zoomPercents[] = {75, 100, 125, 150, 200, 250, 300};
// The nearest of zoomPercents; 100 for text that is no number.
int zoomFromSetting(const juce::String& text);

} // namespace zarno
