// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"
#include "tools/zarno/Model.h"

#include <functional>
#include <string>

namespace zarno {

enum class SampleStorage { Auto, Memory, Stream };

class SampleLibrary;

struct ImportOptions {
    std::string out; ///< the instrument file to write, UTF-8
    bool embed = false;
    bool plain = false; ///< no shaped copies of samples
    SampleStorage storage = SampleStorage::Auto;
    SampleLibrary* library = nullptr; ///< of instruments that share their wave files; not with `embed`
    std::uint64_t mostShapedBytes = UINT64_MAX; ///< of shaped copies, in 16 bits
    std::function<void(double fraction)> progress = nullptr;
    /// Called before anything is written with the bytes of sample data that will be.
    std::function<void(std::uint64_t sampleBytes)> announce = nullptr;
    /// Called with the finished model before it is written: the place to add a panel.
    std::function<void(Model&)> finish = nullptr;
    /// Called with each instrument file that was written: the place to look at what was made.
    std::function<void(const std::string& path, ImportReport& report)> check = nullptr;
};

/// Maps the instrument onto groups and zones, converts its samples (into the instrument file, or into a
/// folder beside it named after it) and writes the file. Adds what could not be expressed to `report`. Memory
/// does not grow with the samples. Throws MakerError.
void importInstrument(const ImportedInstrument& source, const ImportOptions& options, ImportReport& report);

} // namespace zarno
