// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/SoundFileReader.h"
#include "tools/import/sfz/SfzFold.h"

namespace zarno {

/// What "<control>" says, for all regions behind it.
struct SfzControl {
    std::string defaultPath;    ///< stands before sample names, as written
    int noteOffset = 0;         ///< added to all keys
    SfzControllers controllers; ///< of the whole text
};

/// A region as far as it can be read without its neighbours.
struct SfzRegion {
    ImportedZone zone;
    int group = 0, offBy = 0; ///< of exclusive groups; 0: none
    bool isMonophonic = false;
};

/// None, and a remark, when the region can never sound. `sound` describes its sample. Controllers are folded
/// into the opcodes: all is as it is at the start.
std::optional<SfzRegion> readSfzRegion(SfzOpcodes& opcodes, const SfzControl& control,
                                       const SoundFileInfo& sound, const std::string& place,
                                       ImportReport& report);

/// Volume, sides, velocity and the envelope, and what of these only copies of the sample can have.
/// `velocity` is what velocity changes as a controller. False, and a remark, when that is silence.
bool readSfzLevel(const SfzOpcodes& opcodes, const SfzControl& control, const SoundFileInfo& sound,
                  const SfzVelocityLevel& velocity, ImportedZone& zone, ImportReport& report);

/// Filters, equalisers, LFOs and the envelopes of pitch and filter.
void readSfzShaping(const SfzOpcodes& opcodes, const SfzControl& control, ImportedZone& zone,
                    ImportReport& report);

/// When a region sounds: keyswitches, controllers, channels, programs, release, alternation. False, and a
/// remark, when that is never.
bool readSfzConditions(const SfzOpcodes& opcodes, const SfzControl& control, SfzRegion& region,
                       ImportReport& report);

/// Adds the opcodes that say more than zones can to the report.
void reportSfzOpcodes(const SfzOpcodes& opcodes, const std::string& place, ImportReport& report);

} // namespace zarno
