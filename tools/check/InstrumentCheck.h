// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/check/Finding.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/JsonObject.h"

#include <functional>

namespace zarno {

/// Everything an instrument's maker got wrong, in the order of the file. Reads all samples to know how loud
/// they are; `progress` hears of it (0..1).
Findings checkInstrument(const InstrumentReport& report, const std::function<void(double)>& progress);

Json findingsToJson(const Findings& findings);
std::string findingsToText(const Findings& findings);
std::size_t countErrors(const Findings& findings);

// The parts of the check, each for itself.
void checkRecords(const InstrumentFile& file, Findings& findings);     ///< values no field can have
void checkGroups(const InstrumentFile& file, Findings& findings);      ///< names, triggers, keyswitches
void checkZones(const InstrumentReport& report, Findings& findings);   ///< ranges, points and loops
void checkSamples(const InstrumentReport& report, Findings& findings); ///< missing and unreadable files

/// Zones whose loudest note is above full scale, keys that are silent, sound on one side only, no sound at
/// all. Reads all samples.
void checkLevels(const InstrumentReport& report, const std::function<void(double)>& progress,
                 Findings& findings);

// How findings name their places.
std::string groupPlace(const InstrumentFile& file, std::size_t group);
std::string zonePlace(const InstrumentFile& file, std::size_t group, std::size_t zone);
const InstrumentReport::Sample* sampleOf(const InstrumentReport& report, const ZoneEntry& zone);

} // namespace zarno
