// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/EditorLink.h"

#include <atomic>
#include <optional>

namespace zarno {

class CZSP;

/// The processor as the window sees it.
class EditorPort final : public EditorLink {
  public:
    explicit EditorPort(CZSP& processor)
        : processor_(processor) {}

    void setWindow(EditorWindow* window) override { window_ = window; }
    /// Null while no window is open. To be used on the message thread alone; any thread may ask whether.
    EditorWindow* window() const { return window_; }

    ZInstrument& engine() override;
    const juce::CriticalSection& contentsLock() override;
    std::uint32_t groupsGeneration() const override;
    std::uint32_t loadGeneration() const override;
    juce::ListBoxModel& instrumentList() override;
    juce::StringArray instrumentTitles() const override;
    int currentIndex() const override;
    juce::String currentPath() const override;
    void selectInstrument(int index, const juce::String& path) override;
    void tryAgain() override;
    bool isLoading() const override;
    bool lastLoadSucceeded() const override;
    double loadProgress() const override;
    Missing missingSamples() const override;
    void locateMissingSamples(const juce::File& folder) override;
    bool takeTurnToTell() override;
    juce::String setting(const juce::String& key, const juce::String& fallback) const override;
    void setSetting(const juce::String& key, const juce::String& value) override;
    juce::String packTitle() const override;
    juce::String vendorText() const override;
    void editEnded() override;
    KeyboardRoute& keyboardRoute() override;

  private:
    CZSP& processor_;
    std::atomic<EditorWindow*> window_{nullptr};
    std::optional<std::uint32_t> toldLoad_;
};

} // namespace zarno
