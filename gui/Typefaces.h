// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// What text is drawn with, whatever is installed. Windows sees to most of this itself. On Linux the framework
// draws nothing with a face that is not there, an empty box for a character that a face does not have, and
// does not know font collections, as which most Chinese, Japanese and Korean faces come. Message thread.

// Chooses the default sans-serif face of a look and feel, and the face for characters that others do not
// have.
void chooseTypefaces(juce::LookAndFeel& lookAndFeel);

// The font to take for `font`: itself, or the default sans-serif one when its face is not there.
juce::Font installedFont(juce::Font font);

// What draws `font`, given the face the framework would take: that one, and for what it does not have the
// chosen one.
juce::Typeface::Ptr completeTypeface(const juce::Font& font, const juce::Typeface::Ptr& face);

} // namespace zarno
