// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"
#include "tools/zarno/Model.h"

#include <functional>
#include <string>

namespace zarno {

enum class SampleStorage { Auto, Memory, Stream };

struct ImportOptions {
    std::string out; ///< the instrument file to write, UTF-8
    bool embed = false;
    bool plain = false; ///< no shaped copies of samples
    SampleStorage storage = SampleStorage::Auto;
    std::function<void(double fraction)> progress = nullptr;
    /// Called with the finished model before it is written: the place to add a panel.
    std::function<void(Model&)> finish = nullptr;
};

/// Maps the instrument onto groups and zones, converts its samples (into the instrument file, or into a
/// folder beside it named after it) and writes the file. Adds what could not be expressed to `report`. Memory
/// does not grow with the samples. Throws MakerError.
void importInstrument(const ImportedInstrument& source, const ImportOptions& options, ImportReport& report);

} // namespace zarno
