// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/FileDrops.h"

#include "gui/Theme.h"

#include <algorithm>

namespace zarno {
namespace {

juce::String nameOf(const juce::String& path) {
    return path.substring(path.lastIndexOfAnyOf("/\\") + 1);
}

// Why a file that is no instrument is not taken, and what to do with it.
juce::String adviceFor(const juce::String& path) {
    const auto name = nameOf(path);
    for (const char* format : {".sfz", ".sf2"})
        if (path.endsWithIgnoreCase(format))
            return name + ": convert it with \"zarno import\", then drop the .zse file.";
    for (const char* format : {".wav", ".aif", ".aiff", ".flac", ".ogg"})
        if (path.endsWithIgnoreCase(format))
            return name + " is a sound: make an instrument of its folder with \"zarno import\".";
    return name + " is no instrument (.zse or .zs2).";
}

} // namespace

bool isInstrumentFile(const juce::String& path) {
    return path.endsWithIgnoreCase(".zse") || path.endsWithIgnoreCase(".zs2");
}

DropOffer offerFor(const juce::StringArray& files) {
    const auto found = std::find_if(files.begin(), files.end(), isInstrumentFile);
    if (found != files.end()) return {*found, "Load " + nameOf(*found)};
    return {{}, files.isEmpty() ? juce::String("Drop an instrument file (.zse or .zs2).") : adviceFor(files[0])};
}

void DropHighlight::show(const DropOffer& offer) {
    offer_ = offer;
    setVisible(true);
    toFront(false);
    repaint();
}

void DropHighlight::paint(juce::Graphics& g) {
    const juce::Colour colour(offer_.isTaken() ? theme::good : theme::warning);
    g.fillAll(juce::Colour(theme::body).withAlpha(0.94f));
    g.setColour(colour);
    g.drawRoundedRectangle(getLocalBounds().toFloat().reduced(4.0f), theme::corner, 2.0f);
    g.setFont(juce::Font(theme::titleHeight));
    g.drawFittedText(offer_.text, getLocalBounds().reduced(24), juce::Justification::centred, 3);
}

} // namespace zarno
