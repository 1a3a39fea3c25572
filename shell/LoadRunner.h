// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentLoader.h"
#include "shell/LoadRequest.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <chrono>
#include <memory>
#include <optional>
#include <span>

namespace zarno {

class EditorPort;
class FolderQuestion;
class LoadController;
class LoadJob;
class Settings;
class ZInstrument;
class ZSEDelegate;

/// Performs the load that LoadController has decided on: keeps the audio thread out of the engine, has a
/// reader read the file, asks the user for missing samples, hands the new contents to the engine, applies a
/// restored state.
class LoadRunner {
  public:
    /// What the load works on; all outlive it. `delegate` hears of progress, says whether to go on, and is
    /// told when a restored state changes the active groups.
    struct Parts {
        ZInstrument& engine;
        ZSEDelegate& delegate;
        juce::AudioProcessor& processor;
        Settings& settings;
        EditorPort& editor;
        LoadController& controller;
    };
    explicit LoadRunner(const Parts& parts)
        : parts_(parts) {}

    /// [loading, or the thread that restores] The whole of `controller.running()`, which has finished when
    /// this returns.
    void perform();

    /// [any but audio] Ends `controller.running()`, which no thread can perform.
    void fail();

    /// [any but audio] Applies the tail of a chunk to the engine as it is now, as far as the tail fits.
    void applyState(std::span<const std::uint8_t> tail);

    /// Held while groups, zones and texts of the engine are read or replaced. Taken before the callback lock.
    const juce::CriticalSection& contentsLock() const { return contentsLock_; }

    /// [any] What the last load has to say.
    struct Report {
        std::string path; ///< of the instrument file
        LoadResult result;
    };
    Report report() const;
    /// [any] Whether the last load would have asked for missing samples, had its caller not waited. True
    /// once.
    bool takeUnaskedQuestion();

    /// [any but audio] Where the user looked for samples the last time, if the system answers for that
    /// folder.
    juce::File missingFolder() const;

  private:
    using Clock = std::chrono::steady_clock;

    LoadResult read(const LoadRequest& request);
    std::optional<LoadProblem::Kind> follow(LoadJob& job);
    void clearEngine();
    bool mayAsk() const;
    void discuss(LoadJob& job, std::unique_ptr<FolderQuestion>& question);
    void makeOnlyActiveGroup(std::int32_t index);

    const Parts parts_;
    bool isCleared_ = false; // by the running load; used by its thread alone
    juce::CriticalSection contentsLock_;
    juce::CriticalSection reportLock_; // guards the two below
    Report report_;
    bool hasUnaskedQuestion_ = false;
};

} // namespace zarno
