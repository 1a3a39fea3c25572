// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdint>
#include <functional>

namespace zarno {

class KeyboardRoute;
class ZInstrument;

/// What the processor tells the window that is open. All calls come on the message thread.
class EditorWindow {
  public:
    virtual ~EditorWindow() = default;

    /// A load was requested: show the loading overlay. May come again before loadingFinished.
    virtual void loadingStarted() = 0;
    /// The load has ended: hide the overlay and rebuild the panel from what the engine holds now. No load
    /// changes the engine before this returns.
    virtual void loadingFinished() = 0;
    /// Follows loadingFinished when the load failed: show one box with "Unable to load this instrument."
    /// Returns before the user has dismissed it.
    virtual void loadFailed() = 0;

    /// Shows "Locate Sample Folder for" that sample, starting in `start`, and returns. The answer comes
    /// later: no file when the user cancels; none at all when the window or the load ends first, which closes
    /// the dialog.
    virtual void askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                                    std::function<void(const juce::File&)> answer) = 0;
};

/// Everything the window may ask of the processor. Calls belong to the message thread unless marked
/// otherwise.
class EditorLink {
  public:
    virtual ~EditorLink() = default;

    /// The window that hears from the processor, one at a time; null when it closes. Not owned.
    virtual void setWindow(EditorWindow* window) = 0;

    /// The instrument that plays. Single settings and record fields, events and requests may be used at any
    /// time (see its header); groups, zones and texts only while contentsLock is held: a load replaces them.
    virtual ZInstrument& engine() = 0;
    virtual const juce::CriticalSection& contentsLock() = 0;

    /// [any thread] Counts the changes of the set of active groups. They may happen on the audio thread, so
    /// the window asks for this from a timer.
    virtual std::uint32_t groupsGeneration() const = 0;
    /// [any thread] Counts the loads that have ended. What the window remembers of groups is stale after a
    /// change.
    virtual std::uint32_t loadGeneration() const = 0;

    /// The library, in program order. Its rows are these titles; a double click selects.
    virtual juce::ListBoxModel& instrumentList() = 0;
    virtual juce::StringArray instrumentTitles() const = 0;
    /// What the scan of the library left out and why: sentences, empty when it reached everything.
    virtual juce::String libraryProblem() const = 0;
    /// Of the instrument that is loaded, being loaded, or was chosen during a load: -1 when there is none or
    /// its file is not in the library.
    virtual int currentIndex() const = 0;

    /// Loads the library's instrument `index`, or the file `path` when that is not empty, in the background.
    /// Selecting what is loaded does nothing; selecting what failed tries again. During a load nothing new
    /// starts; the selection only becomes the current one.
    virtual void selectInstrument(int index, const juce::String& path) = 0;
    /// Loads the current instrument once more, after a failure or when samples were missing. Of one that was
    /// loaded the player's settings are kept.
    virtual void tryAgain() = 0;

    /// [any thread]
    virtual bool isLoading() const = 0;
    virtual bool lastLoadSucceeded() const = 0;
    /// [any thread] 0..1, below 0 when unknown.
    virtual double loadProgress() const = 0;

    /// What the last load has to say.
    struct LoadReport {
        juce::String fileName; ///< of the instrument
        juce::String
            problem; ///< why it failed, or that it was cut short: one sentence; empty when all is well
        bool failed = false;
        bool fileIsMissing = false; ///< there is no such file: locateInstrument helps
    };
    virtual LoadReport lastLoad() const = 0;
    /// The user says where the missing instrument is: loads `file` with the settings of the project.
    virtual void locateInstrument(const juce::File& file) = 0;

    /// What the last load did not find, and what it found in a form it cannot read: full paths.
    struct Missing {
        juce::StringArray notFound;
        juce::StringArray unsupported;
    };
    virtual Missing missingSamples() const = 0;
    /// The user says where the missing samples are: remembered as for the search dialog, then tryAgain.
    virtual void locateMissingSamples(const juce::File& folder) = 0;

    /// True once per load: the window reports panel errors now.
    virtual bool shouldReportPanelError() = 0;

    /// Texts kept per user, across instances and sessions.
    virtual juce::String setting(const juce::String& key, const juce::String& fallback = {}) const = 0;
    virtual void setSetting(const juce::String& key, const juce::String& value) = 0;

    /// From the module's identity; may be empty.
    virtual juce::String packTitle() const = 0;
    virtual juce::String vendorText() const = 0;

    /// An edit on the panel has ended (mouse released, choice made): tells the host that the state changed.
    virtual void editEnded() = 0;

    /// Where the panel publishes its keyboard state.
    virtual KeyboardRoute& keyboardRoute() = 0;

    /// What the audio thread does; all zero when nothing has been rendered for a moment.
    struct Activity {
        float peak = 0.0f; ///< of the output, 1 is full scale
        double cpu = 0.0;  ///< share of the time that the host gives for a block
    };
    virtual Activity activity() = 0;
    /// Nothing renders, and that is this program's own business: it runs without a host.
    virtual bool lacksAudioDevice() const = 0;
    /// Where the user chooses an audio device; not in a host.
    virtual bool hasAudioSettings() const = 0;
    virtual void showAudioSettings() = 0;

    /// Full paths, in the order of instrumentTitles.
    virtual juce::StringArray instrumentPaths() const = 0;
    /// The folders that hold the library, whether they are there or not; first the one to put instruments into.
    virtual juce::StringArray libraryFolders() const = 0;
    /// Reads the library again, in the background. While the window asks for the generation that happens by itself
    /// after a folder has changed.
    virtual void refreshLibrary() = 0;
    /// Counts the changes of the library.
    virtual std::uint32_t libraryGeneration() = 0;

    /// Ends the running load, if there is one; nothing is loaded then.
    virtual void cancelLoad() = 0;
};

} // namespace zarno
