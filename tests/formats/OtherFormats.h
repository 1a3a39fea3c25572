// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/host/HostRig.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>
#include <string>
#include <vector>

namespace zarno::test {

/// The formats that are built besides VST 2.4: "vst3" and, on Linux, "lv2".
std::vector<std::string> otherFormats();

/// A copy of the bundle of `format` in `folder`, under the name "Pack". Returns its path.
std::string copyBundle(const std::string& format, const std::string& folder);

/// Opens the plug-in of a bundle, ready to render offline. Fails the test and gives null when that does not work.
std::unique_ptr<juce::AudioPluginInstance> openBundle(const std::string& bundle, double rate, int blockSize);

/// Renders `frames` in blocks of `blockSize`, events at their frames.
Rendered render(juce::AudioPluginInstance& plugin, int frames, int blockSize,
                const std::vector<TimedEvent>& events);

} // namespace zarno::test
