// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"
#include "tools/vsthost/HostedPlugin.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zarno::test {

/// The module under test, copied into a folder of its own with a library beside it. The test's program never
/// sees the user's own library or settings.
class HostRig {
  public:
    explicit HostRig(const std::string& moduleName = "Pack");

    /// Writes an instrument into the library folder; `name` may hold folders. Returns its full path.
    std::string addInstrument(const std::string& name, const std::string& bytes);
    std::string modulePath() const { return module_; }
    const TempFolder& folder() const { return folder_; }

    /// Loads the module. Fails the test and gives null when that does not work.
    std::unique_ptr<HostedPlugin> load(const HostedPlugin::Options& options = {}) const;
    /// The same, with processing turned on.
    std::unique_ptr<HostedPlugin> loadActive(const HostedPlugin::Options& options = {}) const;

  private:
    TempFolder folder_;
    std::string name_;
    std::string module_;
};

/// An embedded 16-bit mono sample as one block of an instrument file.
std::string monoBlock(int frames, int rate, const std::function<double(int frame)>& value);

/// One group whose one zone plays a constant level of a half on all keys, at full level for any velocity,
/// with no attack and a release too short to hear: the output tells when which note sounds.
InstrumentBuilder levelInstrument(const std::string& name, double level = 0.5);

/// A library whose first instrument is small and whose second takes a while to load: "a small.zse", "b slow.zse".
void addSlowLibrary(HostRig& rig);

struct Rendered {
    std::vector<float> left, right;
    friend bool operator==(const Rendered&, const Rendered&) = default;
};

struct TimedEvent {
    std::int64_t frame = 0;
    std::vector<std::uint8_t> bytes;
};

/// Renders `frames` from an active plug-in in its own block size, events at their frames.
Rendered render(HostedPlugin& plugin, int frames, const std::vector<TimedEvent>& events = {});

/// The first frame that is not silent; -1 when all are.
int firstSound(const std::vector<float>& samples);

/// Of a chunk: its path with the zero byte.
inline std::size_t pathBytes(const std::vector<std::uint8_t>& chunk) {
    return static_cast<std::size_t>(std::find(chunk.begin(), chunk.end(), 0) - chunk.begin()) + 1;
}

inline std::vector<std::uint8_t> noteOn(int key, int velocity = 100) {
    return {0x90, static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity)};
}
inline std::vector<std::uint8_t> noteOff(int key) {
    return {0x80, static_cast<std::uint8_t>(key), 0};
}
inline std::vector<std::uint8_t> controller(int number, int value) {
    return {0xB0, static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(value)};
}

} // namespace zarno::test
