// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/UserFolders.h"

#include "platform/Module.h"
#include "platform/Paths.h"
#include "shell/Library.h"

#include <cstdlib>

namespace zarno {
namespace {

constexpr const char* productFolder = "Zarno Sampler Player";

#ifndef _WIN32
// A relative path in such a variable counts as none.
std::string xdgFolder(const char* variable, const char* belowHome) {
    const char* value = std::getenv(variable);
    if (value != nullptr && value[0] == '/') return value;
    const std::string home = homeFolder();
    return home.empty() ? std::string() : joinPath(home, belowHome);
}
#endif

juce::File specialFolder(juce::File::SpecialLocationType kind) {
    return juce::File::getSpecialLocation(kind);
}

} // namespace

std::string homeFolder() {
    return specialFolder(juce::File::userHomeDirectory).getFullPathName().toStdString();
}

juce::File defaultSampleFolder() {
    return specialFolder(juce::File::userHomeDirectory);
}

std::string userLibraryFolder() {
#ifdef _WIN32
    const auto base = specialFolder(juce::File::userDocumentsDirectory).getFullPathName().toStdString();
#else
    const auto base = xdgFolder("XDG_DATA_HOME", ".local/share");
#endif
    return base.empty() ? std::string() : joinPath(joinPath(base, productFolder), "Instruments");
}

std::vector<std::string> libraryFolders() {
    auto folders = libraryFoldersBeside(modulePaths());
    folders.push_back(userLibraryFolder());
    return folders;
}

juce::File settingsFileLocation() {
#ifdef _WIN32
    const auto base = specialFolder(juce::File::userApplicationDataDirectory);
#else
    const auto folder = xdgFolder("XDG_CONFIG_HOME", ".config");
    if (folder.empty()) return {};
    const juce::File base(juce::String::fromUTF8(folder.c_str()));
#endif
    return base == juce::File() ? juce::File()
                                : base.getChildFile(productFolder).getChildFile("pluginsettings.dat");
}

} // namespace zarno
