// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Settings.h"

namespace zarno {
namespace {

constexpr int lockTimeoutMs = 1000; // for another process that is writing

// Held for a whole read-change-write. One lock keeps processes apart, the other the instances of this
// process.
class WriteLock {
  public:
    WriteLock()
        : hold_(withinProcess())
        , has_(betweenProcesses().enter(lockTimeoutMs)) {}
    ~WriteLock() {
        if (has_) betweenProcesses().exit();
    }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

  private:
    static juce::CriticalSection& withinProcess() {
        static juce::CriticalSection lock;
        return lock;
    }
    static juce::InterProcessLock& betweenProcesses() {
        static juce::InterProcessLock lock("Zarno Sampler Player settings");
        return lock;
    }

    const juce::ScopedLock hold_;
    const bool has_;
};

} // namespace

Settings::Settings(const juce::File& file) {
    if (file != juce::File())
        file_ = std::make_unique<juce::PropertiesFile>(file, juce::PropertiesFile::Options());
}

Settings::~Settings() {
    if (!file_) return;
    const juce::ScopedLock hold(file_->getLock());
    file_->saveIfNeeded();
}

juce::String Settings::get(const juce::String& key, const juce::String& fallback) const {
    if (!file_) return fallback;
    const juce::ScopedLock hold(file_->getLock());
    if (!file_->needsToBeSaved()) file_->reload(); // another instance may have written
    return file_->getValue(key, fallback);
}

void Settings::set(const juce::String& key, const juce::String& value) {
    if (!file_) return;
    const WriteLock lock;
    const juce::ScopedLock hold(file_->getLock()); // PropertiesFile::reload does not take it
    file_->reload();
    file_->setValue(key, value);
    file_->saveIfNeeded();
}

} // namespace zarno
