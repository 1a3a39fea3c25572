// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/LayoutFormat.h"

#include <juce_graphics/juce_graphics.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zarno {

// One control of a panel as its element describes it: plain values, defaults filled in. Lengths are panel
// pixels.
struct ControlDescription {
    ControlKind kind = ControlKind::Label;
    juce::Rectangle<int> bounds{0, 0, 50, 50};
    std::optional<int> image;         // number of the image it shows
    int id = -1;                      // the setting it drives, see ControlBindings.h
    bool flag = false;                // button: clicks toggle; keyboard: its display flag
    std::pair<int, int> keys{0, 127}; // keyboard: first and last note shown, first <= last
    int justification = 0;            // label: juce::Justification flags
    juce::String typeface;            // label: empty for the default one
    float fontHeight = 12.0f;         // label
    juce::String text;
    juce::String extra = "-1";                         // attribute "9"; kept on the control, read by nobody
    std::vector<std::pair<int, juce::Colour>> colours; // juce colour id, colour

    // The attributes that were given, as name and text, for those that come to the control as properties.
    std::vector<std::pair<juce::String, juce::String>> given;
};

// An image of the layout, still encoded.
struct LayoutImage {
    int number = 0;
    juce::MemoryBlock data;
};

struct Layout {
    int width = 600, height = 250;
    std::vector<LayoutImage> images;
    std::vector<ControlDescription> controls; // in document order
};

// What the user is told when there is no panel in the text.
struct LayoutProblem {
    juce::String caption, text;
};

// Reads the layout text of an instrument (any bytes). Pure: no component, no decoding of images. Too large a
// text, nested too deeply, or with a document type is a format error; controls past the last one allowed are
// skipped; lengths are cut.
std::variant<Layout, LayoutProblem> readLayout(std::string_view text);

} // namespace zarno
