// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/StatusBar.h"
#include "shell/EditorLink.h"

namespace zarno {

// What the window knows and the processor does not say, for the bar.
struct BarTexts {
    juce::String instrument; // empty when nothing is loaded
    juce::String advice;     // about a drop that was not taken
    juce::String missing;    // "3 samples missing"
    EditorLink::LoadReport lastLoad;
    std::uint64_t lateReadsSeen = 0; // those that the user has been told of
    int zoomPercent = 100;
    int instrumentCount = 0; // of the library
};

// What the bar shows now. Message thread.
StatusBar::State barState(EditorLink& link, const BarTexts& texts);

} // namespace zarno
