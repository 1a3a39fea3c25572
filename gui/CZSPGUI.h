// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CLoadingComponent.h"
#include "gui/CPlayerGUI.h"
#include "gui/ControlRefresh.h"
#include "gui/EngineAccess.h"
#include "gui/FileDialogs.h"
#include "gui/GroupSelection.h"
#include "gui/InstrumentListPanel.h"
#include "gui/KeyRoles.h"
#include "gui/Repainter.h"
#include "gui/StatusBar.h"
#include "shell/EditorLink.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace zarno {

class PanelEdits;

// The window: the player panel with the bar below it, and over them the instrument list and the loading
// overlay. Listens to every control of the panel and polls the engine, since nothing on the audio thread may
// call a window. Message thread.
class CZSPGUI final : public juce::AudioProcessorEditor,
                      public juce::Slider::Listener,
                      public juce::Button::Listener,
                      public juce::ComboBox::Listener,
                      public EditorWindow,
                      public juce::FileDragAndDropTarget,
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
    juce::Component& overlay() { return overlay_; }
    InstrumentListPanel& instrumentList() { return list_; }

    void setZoom(int percent);
    int zoom() const { return zoomPercent_; }
    void showInstrumentMenu(juce::Component& source);
    void showGroupMenu(juce::Component& source);
    void showMissingMenu(juce::Component& source);
    void showZoomMenu(juce::Component& source);
    void openInstrumentFile();
    void locateInstrument();
    void openInstrumentList();

    void loadingStarted() override;
    void loadingFinished() override;
    void loadFailed() override;
    void askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                            std::function<void(const juce::File&)> answer) override;

    void sliderValueChanged(juce::Slider*) override;
    void sliderDragStarted(juce::Slider*) override;
    void sliderDragEnded(juce::Slider*) override;
    void buttonClicked(juce::Button*) override;
    void comboBoxChanged(juce::ComboBox*) override;

    bool isInterestedInFileDrag(const juce::StringArray& files) override;
    void filesDropped(const juce::StringArray& files, int x, int y) override;

    bool keyStateChanged(bool isKeyDown) override;
    void parentHierarchyChanged() override;
    void paint(juce::Graphics&) override;

  private:
    void timerCallback() override;
    void connectBar();
    void fitToPanel();
    void followAttachment();

    void refreshAll();
    bool refreshContents();
    void readContents();
    void refreshLabels();
    void refreshControls();
    void refreshKeyboards();
    void refreshBar();
    void refreshOverlay();
    void refreshActivity();

    void releaseDraggedKnob();
    void stepInstrument(int direction);
    void pickGroup(int group, bool toggle);
    void showMenu(juce::PopupMenu menu, juce::Component& source, std::function<void(int)> picked);
    void showPanelProblem(const juce::String& caption, const juce::String& text);
    void showBox(const juce::String& caption, const juce::String& text);
    juce::String titleText() const;
    juce::StringArray information() const;

    EditorLink& link_;
    juce::Component content_; // all below, scaled by the zoom
    CPlayerGUI panel_;
    StatusBar bar_;
    InstrumentListPanel list_;
    CLoadingComponent overlay_;
    std::unique_ptr<juce::AlertWindow> box_; // where the system's own box is not used
    FileDialogs dialogs_;                    // the user's own
    FileDialogs question_;                   // the load's
    juce::TooltipWindow tooltips_{this, 900};
    Repainter repainter_{*this};

    GroupSelection selection_;
    EngineAccess access_{link_, selection_};
    ControlRefresh refresh_;
    juce::Slider* dragged_ = nullptr; // the knob that the mouse holds
    KeyRoles roles_{};
    juce::String instrumentName_; // empty when nothing is loaded
    juce::String activeGroupNames_;
    juce::StringArray groupNames_;
    juce::String missingText_;
    EditorLink::LoadReport lastLoad_;
    std::uint32_t groupsSeen_ = 0;
    std::uint32_t loadSeen_ = 0; // the load that the panel was built from
    bool rebuildDue_ = false;    // it could not be: another thread had the contents
    bool isAttached_ = false;    // to a window of the system, which is when the processor knows of this
    int zoomPercent_ = 100;
};

} // namespace zarno
