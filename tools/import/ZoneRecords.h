// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/GroupMapper.h"

namespace zarno {

/// All of a zone's record but its points in the sample.
ZoneRecord recordOf(const ImportedZone& zone);

/// The bottom of the velocity curve in dB, as most zones ask for it: an instrument has one for all. Zones
/// that ask for another are added to the report.
int velocityFloorOf(const std::vector<MappedGroup>& groups, ImportReport& report);

} // namespace zarno
