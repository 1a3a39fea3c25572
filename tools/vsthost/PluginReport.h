// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zarno {

class HostedPlugin;

/// What a plug-in tells a host about itself.
struct PluginReport {
    std::uint32_t uniqueId = 0;
    int version = 0, vendorVersion = 0, interfaceVersion = 0;
    std::string effectName, product, vendor;
    int inputs = 0, outputs = 0, parameters = 0, programs = 0, initialDelay = 0;
    bool hasEditor = false, replacing = false, chunks = false, synthesizer = false, silentWhenStopped = false;
    bool receivesMidi = false;
    int category = 0;
    std::vector<std::string> outputNames;
    std::vector<std::string> programNames; ///< as far as they go, whatever `programs` says
    std::string currentProgramName;
    int currentProgram = 0;
};

PluginReport askPlugin(HostedPlugin& plugin);
std::string reportAsText(const PluginReport& report);
std::string reportAsJson(const PluginReport& report);

} // namespace zarno
