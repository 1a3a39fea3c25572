// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/FileDialogs.h"
#include "shell/EditorLink.h"

#include <vector>

namespace zarno {

// What the user chooses in menus and dialogs, done by the window.
class WindowActions {
  public:
    virtual ~WindowActions() = default;
    // Entry `index` of the library, or the file when `path` is not empty.
    virtual void load(int index, const juce::String& path) = 0;
    virtual void pickGroup(int group, bool toggle) = 0;
    virtual void setZoom(int percent) = 0;
};

// The menus, file dialogs and message boxes of the window. They do not block, and go with the window. Message
// thread.
class WindowDialogs {
  public:
    WindowDialogs(juce::Component& window, WindowActions& actions, EditorLink& link)
        : window_(window)
        , actions_(actions)
        , link_(link) {}

    void showInstrumentMenu(juce::Component& source);
    // `load`: the generation that the entries belong to; a choice for another one does nothing.
    void showGroupMenu(juce::Component& source, juce::PopupMenu menu, std::uint32_t load);
    void showMissingMenu(juce::Component& source);
    void showZoomMenu(juce::Component& source, int percent, int largest);

    void openInstrument();
    void locateInstrument();
    // The load's question; see EditorWindow.
    void askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                            std::function<void(const juce::File&)> answer) {
        question_.locateSampleFolder(sampleName, start, std::move(answer));
    }
    void closeQuestion() { question_.close(); }
    // The library's folder in the system's file manager; made when it is not there.
    void openLibraryFolder();

    void showBox(const juce::String& caption, const juce::String& text);

  private:
    void show(juce::PopupMenu menu, juce::Component& source, std::function<void(int)> picked);

    juce::Component& window_;
    WindowActions& actions_;
    EditorLink& link_;
    FileDialogs dialogs_, question_;         // the user's own, and the load's
    std::unique_ptr<juce::AlertWindow> box_; // where the system's own box is not used
};

} // namespace zarno
