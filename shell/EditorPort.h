// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/EditorLink.h"
#include "shell/MessageCall.h"

#include <atomic>
#include <optional>

namespace zarno {

class CZSP;

/// The processor as the window sees it, and the window as the processor sees it.
class EditorPort final : public EditorLink {
  public:
    explicit EditorPort(CZSP& processor)
        : processor_(processor) {}

    void setWindow(EditorWindow* window) override;
    /// [any] Null while no window is open. Only the message thread may use what it points to.
    EditorWindow* window() const { return window_; }
    /// [any] Another number for each window that opens.
    std::uint32_t windowNumber() const { return windowNumber_; }

    /// [any] Shows the overlay, when the caller is the message thread; otherwise the window's timer does.
    void loadingStarted();
    /// [any] Posts to the message thread: tell the host, rebuild the window's panel, say what went wrong.
    void postEndOfLoad() { endOfLoad_->post(); }
    /// [any but audio] No message of ours is posted any more; returns when the message thread has handled those that
    /// were, or after half a second.
    void flushMessages();
    /// [any] No posted message reaches this object after it returns.
    void abandonMessages() { endOfLoad_->abandon(); }

    ZInstrument& engine() override;
    const juce::CriticalSection& contentsLock() override;
    std::uint32_t groupsGeneration() const override;
    std::uint32_t loadGeneration() const override;
    juce::ListBoxModel& instrumentList() override;
    juce::StringArray instrumentTitles() const override;
    juce::String libraryProblem() const override;
    int currentIndex() const override;
    void selectInstrument(int index, const juce::String& path) override;
    void tryAgain() override;
    bool isLoading() const override;
    bool lastLoadSucceeded() const override;
    double loadProgress() const override;
    LoadReport lastLoad() const override;
    void locateInstrument(const juce::File& file) override;
    Missing missingSamples() const override;
    void locateMissingSamples(const juce::File& folder) override;
    bool shouldReportPanelError() override;
    juce::String setting(const juce::String& key, const juce::String& fallback) const override;
    void setSetting(const juce::String& key, const juce::String& value) override;
    juce::String packTitle() const override;
    juce::String vendorText() const override;
    void editEnded() override;
    KeyboardRoute& keyboardRoute() override;
    Activity activity() override;
    bool lacksAudioDevice() const override;
    bool hasAudioSettings() const override;
    void showAudioSettings() override;
    juce::StringArray instrumentPaths() const override;
    juce::StringArray libraryFolders() const override;
    void refreshLibrary() override;
    std::uint32_t libraryGeneration() override;
    void cancelLoad() override;

  private:
    void showEndOfLoad();
    void askForMissingSamples(EditorWindow& window);

    CZSP& processor_;
    std::atomic<EditorWindow*> window_{nullptr};
    std::atomic<std::uint32_t> windowNumber_{0};
    const std::shared_ptr<MessageCall> endOfLoad_ = MessageCall::make([this] { showEndOfLoad(); });
    std::optional<std::uint32_t> reportedLoad_;
    juce::uint32 libraryCheckedAt_ = 0; // ms
    juce::uint32 blockSeenAt_ = 0;      // ms
    std::uint32_t blocksSeen_ = 0;
};

} // namespace zarno
