// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/KeyRoles.h"
#include "gui/WindowMenus.h"

namespace zarno {

// What the window keeps of the loaded instrument between two looks at it.
struct InstrumentView {
    juce::String name; // empty when nothing is loaded; the file's name for an instrument without one
    std::vector<GroupEntry> groups;
    juce::String activeGroups; // names
    juce::String missing;      // "3 samples missing", empty when none is
    EditorLink::LoadReport lastLoad;
    KeyRoles roles{};

    // The caller has the contents.
    void read(EditorLink& link);
};

juce::String fromEngine(const std::string& text);
juce::String fileNameWithoutExtension(const juce::String& path);

} // namespace zarno
