// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/sfz/SfzRegion.h"

#include <vector>

namespace zarno {

/// What regions mean only together: which of them cut each other.
void connectSfzRegions(std::vector<SfzRegion>& regions, ImportReport& report);

} // namespace zarno
