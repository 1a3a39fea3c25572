// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <memory>

namespace zarno {

// The window's file choosers, one open at a time. They do not block; deleting this closes the one that is
// open without an answer. Message thread.
class FileDialogs {
  public:
    using Answer = std::function<void(const juce::File&)>;

    // `start`: the file or folder shown first, the user's documents when it is not there. No answer when the
    // user cancels.
    void openInstrument(const juce::File& start, Answer answer);
    void chooseSampleFolder(const juce::File& start, Answer answer);
    // The same for one sample. An answer without a file when the user cancels.
    void locateSampleFolder(const juce::String& sampleName, const juce::File& start, Answer answer);

    // Closes the one that is open.
    void close() { chooser_.reset(); }

    // Whether the system's own dialog can be used. On Linux it is a program of the desktop, which may be
    // there and fail all the same.
    static bool isNativeUsable();

  private:
    void launch(const juce::String& title, const juce::File& start, const juce::String& patterns, int flags,
                Answer answer);

    std::unique_ptr<juce::FileChooser> chooser_;
};

} // namespace zarno
