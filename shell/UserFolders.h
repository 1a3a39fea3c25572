// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <string>
#include <vector>

namespace zarno {

/// Where the user's instruments are kept, for all modules: "Zarno Sampler Player/Instruments" in the
/// documents folder on Windows, in the XDG data folder elsewhere. Empty when there is no such place.
std::string userLibraryFolder();

/// Where this module looks for instruments, in this order: beside itself, then in the user's library.
std::vector<std::string> libraryFolders();

/// Where the settings file lies: the roaming application data folder on Windows, the XDG configuration folder
/// elsewhere, each with a folder "Zarno Sampler Player". An invalid file when there is no such place.
juce::File settingsFileLocation();

/// The user's home folder.
std::string homeFolder();

/// Where the question for a sample folder starts when the user has never chosen one: the home folder.
juce::File defaultSampleFolder();

} // namespace zarno
