// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace zarno {

// The library as the browser shows it: a section for each folder, names in order, narrowed by what is typed. Plain
// data, no window.
class LibraryView {
  public:
    struct Row {
        juce::String text;
        juce::String detail; // of an instrument: its folder, while rows of several folders stand together
        int index = -1;      // in the library; -1: the heading of a section
        bool isHeading() const { return index < 0; }
    };

    // `titles` and `paths` of the library's instruments in its order, the folders it was read from, and the paths
    // that were loaded last, latest first.
    void setLibrary(const juce::StringArray& titles, const juce::StringArray& paths,
                    const juce::StringArray& folders, const juce::StringArray& recent);

    // All rows for an empty text; else the instruments whose name or folder contains every word, those whose name
    // begins with the text first. Case does not count.
    const std::vector<Row>& search(const juce::String& text);
    const std::vector<Row>& rows() const { return rows_; }
    // The row of the library's instrument, or -1. Not one of the recent ones.
    int rowOf(int index) const;

  private:
    struct Entry {
        juce::String title, section, searched; // searched: both in lower case
        int index;
    };

    std::vector<Entry> entries_; // in the order of the sections, and of names in each
    std::vector<int> recent_;    // places in entries_
    std::vector<Row> rows_;
};

// `recent` with `path` first: at most `most` lines, each path once.
juce::StringArray withMostRecent(const juce::StringArray& recent, const juce::String& path, int most = 8);

} // namespace zarno
