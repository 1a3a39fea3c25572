// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/AboutPanel.h"
#include "gui/Browser.h"
#include "gui/CLoadingComponent.h"
#include "gui/CPlayerGUI.h"
#include "gui/ControlRefresh.h"
#include "gui/FileDrops.h"
#include "gui/FirstRunPanel.h"
#include "gui/GroupSelection.h"
#include "gui/InstrumentListPanel.h"
#include "gui/InstrumentView.h"
#include "gui/KnobActions.h"
#include "gui/Repainter.h"
#include "gui/StatusBar.h"
#include "gui/WindowDialogs.h"
#include "gui/WindowInput.h"
#include "gui/WindowMenus.h"
#include "gui/WindowZoom.h"
#include "shell/EditorLink.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace zarno {

// The window: the player panel with the bar below it, and over them the library, the loading overlay and what else
// opens. Listens to every control of the panel and polls the engine, since nothing on the audio thread may call a
// window. Message thread.
class CZSPGUI final : public juce::AudioProcessorEditor,
                      public juce::Slider::Listener,
                      public juce::Button::Listener,
                      public juce::ComboBox::Listener,
                      public EditorWindow,
                      public juce::FileDragAndDropTarget,
                      public juce::TextDragAndDropTarget,
                      private WindowActions,
                      private juce::Timer {
  public:
    CZSPGUI(juce::AudioProcessor& processor, EditorLink& link);
    ~CZSPGUI() override;

    // Everything anew from the instrument that the engine holds; later, when another thread has it just now.
    void rebuildPlayer();
    // What the clock of the window does 30 times a second: shows what has changed in the engine.
    void refresh();
    CPlayerGUI& panel() { return panel_; }
    StatusBar& statusBar() { return bar_; }
    CLoadingComponent& overlay() { return overlay_; }
    InstrumentListPanel& instrumentList() { return list_; }
    Browser& browser() { return browser_; }
    AboutPanel& about() { return about_; }
    FirstRunPanel& firstRun() { return firstRun_; }
    DropHighlight& dropHighlight() { return drop_; }
    KnobActions& knobs() { return knobs_; }

    void setZoom(int percent) override;
    int zoom() const { return zoom_.percent(); }
    WindowDialogs& dialogs() { return dialogs_; }
    void showGroupMenu(juce::Component& source);
    void openInstrumentList();
    void openBrowser();
    void openAbout();
    void panic();
    void pickGroup(int group, bool toggle) override;

    void loadingStarted() override;
    void loadingFinished() override;
    void loadFailed() override;
    void askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                            std::function<void(const juce::File&)> answer) override;

    void sliderValueChanged(juce::Slider* knob) override { knobs_.moved(*knob); }
    void sliderDragStarted(juce::Slider* knob) override { knobs_.dragStarted(*knob); }
    void sliderDragEnded(juce::Slider* knob) override { knobs_.dragEnded(*knob); }
    void buttonClicked(juce::Button*) override;
    void comboBoxChanged(juce::ComboBox*) override;

    // Any drag is taken, so that the user learns what can be done with it. A drag that no component takes would
    // also leave JUCE 7 refusing all later ones over the same component.
    bool isInterestedInFileDrag(const juce::StringArray&) override { return true; }
    void fileDragEnter(const juce::StringArray& files, int, int) override { drop_.show(offerFor(files)); }
    void fileDragExit(const juce::StringArray&) override { drop_.setVisible(false); }
    void filesDropped(const juce::StringArray& files, int, int) override;
    bool isInterestedInTextDrag(const juce::String&) override { return true; }
    void textDragEnter(const juce::String&, int, int) override { drop_.show(offerFor({})); }
    void textDragExit(const juce::String&) override { drop_.setVisible(false); }
    void textDropped(const juce::String&, int, int) override { filesDropped({}, 0, 0); }

    bool keyPressed(const juce::KeyPress& key) override { return input_.keyPressed(key); }
    bool keyStateChanged(bool isKeyDown) override { return input_.keyStateChanged(isKeyDown); }
    void parentHierarchyChanged() override { followAttachment(); }
    void visibilityChanged() override;
    void paint(juce::Graphics&) override;
    void resized() override;

  private:
    void timerCallback() override;
    void connectBar();
    void connectPanels();
    void fitToPanel();
    void followAttachment();
    void closeMenusOfHiddenWindow();

    void refreshAll();
    void readContents();
    void refreshLabels();
    void refreshControls();
    void refreshLibrary();
    void fillBrowser();
    void refreshBar();
    void refreshOverlay();
    void refreshActivity();

    void load(int index, const juce::String& path) override;
    void stepInstrument(int direction);
    void followNotice(juce::Component& source);
    juce::String titleText() const;
    juce::StringArray recentPaths() const;
    std::vector<juce::Rectangle<int>> occupiedPlaces();

    EditorLink& link_;
    WindowZoom zoom_{link_};
    juce::Component content_; // all below, scaled by the zoom
    GroupSelection selection_;
    EngineAccess access_{link_, selection_};
    KnobActions knobs_{link_, access_, selection_, {content_, [this] { return occupiedPlaces(); }}};
    CPlayerGUI panel_;
    StatusBar bar_;
    InstrumentListPanel list_;
    Browser browser_;
    AboutPanel about_;
    FirstRunPanel firstRun_;
    CLoadingComponent overlay_;
    DropHighlight drop_;
    WindowDialogs dialogs_{*this, *this, link_};
    juce::TooltipWindow tooltips_{this, 900};
    Repainter repainter_{*this};
    WindowInput input_{*this,
                       panel_,
                       {[this] { return list_.isVisible() || browser_.isVisible() || overlay_.isVisible(); },
                        [this](int direction) { setZoom(zoom_.stepped(direction)); }}};

    ControlRefresh refresh_;
    InstrumentView view_;
    juce::String chosenName_;     // of the file that the user chose last
    juce::StringArray titles_; // of the library
    juce::String advice_; // about a drop that was not taken, or the library
    juce::String libraryProblem_;
    std::uint64_t lateReadsSeen_ = 0;
    std::uint32_t groupsSeen_ = 0, librarySeen_ = 0;
    std::uint32_t loadSeen_ = 0; // the load that the panel was built from
    bool rebuildDue_ = false;    // it could not be: another thread had the contents
    bool isAttached_ = false;    // to a window of the system, which is when the processor knows of this
};

} // namespace zarno
