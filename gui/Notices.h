// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace zarno {

// What the bar tells the user, and the one thing to do about it.
struct Notice {
    enum class Action { None, TryAgain, Locate, ShowMissing, AudioSettings, Dismiss };

    juce::String text;
    Action action = Action::None;
    bool isWarning = false;

    const char* actionText() const;
    bool operator==(const Notice&) const = default;
};

// What a notice is made of.
struct WindowFacts {
    juce::String instrument;    // name of what is loaded, empty when nothing is
    juce::String advice;        // an answer to what the user has just done
    juce::String file;          // of the last load, its name
    juce::String problem;       // why it failed or was cut short, a sentence; empty when all is well
    bool hasFailed = false;     // that load
    bool fileIsMissing = false; // there is no such file
    juce::String missing;       // "3 samples missing", empty when none is
    int lateReads = 0;          // buffers that came too late, since the user was told last
    bool lacksAudio = false;    // no audio device renders
    bool isStreaming = false;   // else the samples are in memory
};

// An answer first; then what is most important: no sound at all, no instrument, part of an instrument, crackles.
Notice noticeFor(const WindowFacts& facts);

} // namespace zarno
