// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <memory>

namespace zarno {

namespace settingKey {
inline constexpr const char* missingFolder = "missing folder"; // where the user last found missing samples
}

/// Texts kept per user in one small file, shared by all instances in all processes. Each change is merged
/// with the file and written at once; each read sees the latest file. [any thread that may read a file]
class Settings {
  public:
    /// With an invalid file nothing is kept.
    explicit Settings(const juce::File& file);
    ~Settings();

    juce::String get(const juce::String& key, const juce::String& fallback = {}) const;
    void set(const juce::String& key, const juce::String& value);

  private:
    std::unique_ptr<juce::PropertiesFile> file_;
};

} // namespace zarno
