// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/SoundFileReader.h"
#include "tools/import/sfz/SfzOpcodes.h"

namespace zarno {

/// What "<control>" says, for all regions behind it.
struct SfzControl {
    std::string defaultPath; ///< stands before sample names, as written
    int noteOffset = 0;      ///< added to all keys
};

/// A region as far as it can be read without its neighbours.
struct SfzRegion {
    ImportedZone zone;
    int group = 0, offBy = 0; ///< of exclusive groups; 0: none
    bool isMonophonic = false;
    std::optional<double> randomLow, randomHigh;
};

/// None, and a remark, when the region can never sound. `sound` describes its sample.
std::optional<SfzRegion> readSfzRegion(const SfzOpcodes& opcodes, const SfzControl& control,
                                       const SoundFileInfo& sound, const std::string& place,
                                       ImportReport& report);

/// When a region sounds: keyswitches, controllers, channels, programs, release, alternation. False, and a
/// remark, when that is never.
bool readSfzConditions(const SfzOpcodes& opcodes, const SfzControl& control, SfzRegion& region,
                       ImportReport& report);

/// Adds the opcodes that say more than zones can to the report.
void reportSfzOpcodes(const SfzOpcodes& opcodes, const std::string& place, ImportReport& report);

} // namespace zarno
