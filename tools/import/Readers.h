// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"

#include <string>

// One function for each kind of source. All take UTF-8 paths, add what cannot be expressed to the report, and
// throw MakerError when there is nothing to import.
namespace zarno {

/// An SFZ file, with the files it includes and the samples it names beside it.
ImportedInstrument readSfz(const std::string& path, ImportReport& report);

struct FolderOptions {
    /// How file names are to be read, see NamePattern.h; empty: as they come.
    std::string pattern;
};

/// A folder of sound files.
ImportedInstrument readSoundFolder(const std::string& folder, const FolderOptions& options,
                                   ImportReport& report);

/// A drum kit of Hydrogen: the folder with its drumkit.xml.
ImportedInstrument readDrumkit(const std::string& folder, ImportReport& report);

} // namespace zarno
