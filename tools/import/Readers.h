// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"

#include <string>

// One function for each kind of source. All take UTF-8 paths, add what cannot be expressed to the report, and
// throw MakerError when there is nothing to import.
namespace zarno {

/// A drum kit of Hydrogen: the folder with its drumkit.xml.
ImportedInstrument readDrumkit(const std::string& folder, ImportReport& report);

} // namespace zarno
